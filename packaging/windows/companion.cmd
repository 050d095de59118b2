@rem Windows starts no script without an ending. The Python launcher does.
@py -3 "%~dp0%~n0" %*
