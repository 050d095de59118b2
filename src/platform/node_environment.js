// Emscripten gives programs an environment of its own. Ours sees the one it was started with.
Module["preRun"] = () => Object.assign(ENV, process.env);
