// Emscripten gives programs an environment of its own, and one byte to each character. Ours sees the
// environment it was started with, in UTF-8. (Emscripten's optimizer reads only older JavaScript.)
Module["preRun"] = function () {
  for (var name in process.env) {
    ENV[name] = Buffer.from(process.env[name]).toString("latin1");
  }
};
