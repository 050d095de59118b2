// Nothing: its target only precompiles the test framework's headers.
