// The page: the files in memory, the runs of the program, and what each run printed and wrote.
// The other scripts give `exampleFiles`, `createVqvec` and `showMolecule`.
"use strict";

const home = "/home/ada";  // as in the documents
const tour = [
  ["environments", "Charges of one task",
    "q = scrf:charge.mulliken --out q.extxyz"],
  ["environments", "Mean of two tasks",
    "q = mean(scrf:charge.mulliken, vacuum:charge.mulliken) --check same_atoms" +
    " --sum @scrf.charge --out mean.extxyz --chg mean.chg"],
  ["environments", "Difference of two tasks",
    "dq = sub(scrf:charge.mulliken, vacuum:charge.mulliken) --out dq.extxyz"],
  ["environments", "Clip, keep the total",
    "q = renorm(clip(scrf:charge.mulliken, -0.4, 0.4), @scrf.charge) --out clipped.extxyz"],
  ["conformers", "Boltzmann average",
    "q = wmean(conf??:charge.mulliken, boltzmann) --check same_atoms --sum 0 --out q.extxyz"],
  ["conformers", "Average minus one task",
    "dq = sub(wmean(conf??:charge.mulliken, boltzmann), first(conf??:charge.mulliken))" +
    " --out dq.extxyz"],
  ["conformers", "On another geometry",
    "q = mean(conf??:charge.mulliken) --geom conf04 --out mean.extxyz"],
  ["conformers", "Two molecules: refused",
    "q = mean(conf01:charge.mulliken, ../environments/scrf:charge.mulliken) --check same_atoms"],
];

let files;  // every path in the memory of the program -> its bytes, or null for a directory
let last = Promise.resolve();  // the latest run

const byId = (id) => document.getElementById(id);
const toBytes = (text) => new TextEncoder().encode(text);
const toText = (bytes) => new TextDecoder().decode(Uint8Array.from(bytes));
const short = (path) => path.startsWith(home + "/") ? path.slice(home.length + 1) : path;
const parent = (path) => path.slice(0, path.lastIndexOf("/"));
const sorted = (texts) => [...new Set(texts)].sort();
const baseName = (path) => path.slice(path.lastIndexOf("/") + 1);

function fill(node, attributes, children) {
  Object.entries(attributes).forEach(([name, value]) => node.setAttribute(name, value));
  node.append(...children);
  return node;
}
const html = (name, attributes = {}, ...children) =>
  fill(document.createElement(name), attributes, children);

// The words of a command as a shell splits it. What else a shell would do is refused.
function splitWords(command) {
  const word = /(?:'[^']*'|"(?:[^"\\$`]|\\[^])*"|\\[^]|[^\s'"\\|&;<>()$`*?[])+/g;
  const quoted = /'([^']*)'|"((?:[^"\\]|\\[^])*)"|\\([^])/g;
  if (command.replace(word, "").trim()) {
    throw new Error("There is no shell here: quote the statement, '…', and use no pipe or >.");
  }
  return (command.match(word) ?? []).map((text) =>
    text.replace(quoted, (all, single, double, escaped) =>
      single ?? double?.replace(/\\(["\\$`])/g, "$1") ?? escaped));
}

// All paths but those of the system itself.
function readTree(FS, directory = "") {
  return FS.readdir(directory || "/").filter((name) => name !== "." && name !== "..")
    .map((name) => `${directory}/${name}`).filter((path) => path !== "/dev" && path !== "/proc")
    .flatMap((path) => {
      const { mode, mtime } = FS.stat(path);
      return FS.isDir(mode) ? [{ path, bytes: null }, ...readTree(FS, path)]
        : [{ path, bytes: FS.readFile(path), written: mtime.getTime() > 0 }];
    });
}

function writeTree(FS) {
  for (const [path, bytes] of files) {
    FS.mkdirTree(bytes ? parent(path) : path);
    if (bytes) {
      FS.writeFile(path, bytes);
      FS.utime(path, 0, 0);  // a later time shows that the program wrote it
    }
  }
}

// A new program for each run, as on the command line. Its output is collected byte by byte:
// Emscripten's own printing waits for the end of a line.
async function runProgram(words, directory) {
  const stdout = [], stderr = [];
  const { FS, callMain } = await createVqvec({
    thisProgram: words[0],
    stdin: () => null,
    stdout: (byte) => stdout.push(byte),
    stderr: (byte) => stderr.push(byte),
  });
  writeTree(FS);
  FS.chdir(directory);
  const status = callMain(words.slice(1));
  return { status, stdout: toText(stdout), stderr: toText(stderr), tree: readTree(FS) };
}

async function runCommand() {
  try {
    const words = splitWords(byId("command").value.replace(/^\s*\$\s/, ""));
    if (words[0] !== "vqvec") {
      throw new Error("The command must begin with vqvec. This page runs nothing else.");
    }
    const result = await runProgram(words, byId("directory").value);
    const written = result.tree.filter((file) => file.written).map(describeChange);
    files = new Map(result.tree.map(({ path, bytes }) => [path, bytes]));
    showFiles();
    show(`Exit status ${result.status}`, result, written);
  } catch (failure) {
    show(failure.message);
  }
}

// One run after the other: each begins with the files that the one before left.
const run = () => { last = last.then(runCommand); };

// Beside its text, how much of a file is older than the run.
function describeChange({ path, bytes }) {
  const text = toText(bytes), old = files.get(path), oldText = old && toText(old);
  const kept = old && text.startsWith(oldText) ? oldText.length : 0;
  const growth = kept < text.length ? "appended to" : "the same again";
  return { path, bytes, text, kept, change: !old ? "new" : kept ? growth : "replaced" };
}

// Without a result, the summary says why the program did not run.
function show(summary, { status = 1, stdout = "", stderr = "" } = {}, written = []) {
  byId("status").textContent = summary;
  byId("status").className = status ? "failed" : "";
  for (const [id, text] of Object.entries({ stdout, stderr })) {
    byId(id).textContent = text;
    byId(id).parentElement.hidden = !text;
  }
  byId("nothing-written").hidden = written.length > 0;
  byId("written").replaceChildren(...written.map(showWritten));
  byId("written").querySelectorAll("ins").forEach((added) => {
    added.parentElement.scrollTop = added.offsetTop - added.parentElement.offsetTop;
  });
  showMolecule(written.filter(({ text }) => /^\d+\nProperties=/.test(text)).pop());
}

function showWritten({ path, bytes, text, kept, change }) {
  const href = URL.createObjectURL(new Blob([bytes])), download = baseName(path);
  const parts = kept ? [text.slice(0, kept), html("ins", {}, text.slice(kept))] : [text];
  return html("details", { open: "" },
    html("summary", {}, html("code", {}, short(path)), `: ${change}`),
    html("pre", { tabindex: 0, role: "region", "aria-label": short(path) }, ...parts),
    html("a", { href, download, "aria-label": `Download ${download}` }, "Download"));
}

// Fills a list, and keeps the choice if it is still there.
function fillList(id, nodes, first) {
  const chosen = byId(id).value;
  byId(id).replaceChildren(...nodes);
  byId(id).value = chosen;
  byId(id).value ||= first;
}

function showFiles() {
  const option = (value, text) => html("option", { value }, text);
  const paths = [...files.keys()].filter((path) => files.get(path)).sort();
  const groups = sorted(paths.map(parent));
  fillList("file", groups.map((group) => html("optgroup", { label: short(group) },
    ...paths.filter((path) => parent(path) === group)
      .map((path) => option(path, baseName(path))))), paths[0]);
  const directories = sorted([...groups, ...groups.map(parent)]).filter((path) => path);
  fillList("directory", directories.map((path) => option(path, short(path))), directories[0]);
  showContent();
}

const showContent = () => { byId("content").value = toText(files.get(byId("file").value)); };

function takeStop([directory, , statement]) {
  byId("directory").value = `${home}/examples/${directory}`;
  byId("command").value = `vqvec atom --dsl '${statement}'`;
}

function reset() {
  files = new Map(Object.entries(exampleFiles).map(([path, text]) =>
    [`${home}/${path}`, toBytes(text)]));
  showFiles();
}

byId("tour").append(...tour.map((stop) => {
  const button = html("button", {}, stop[1]);
  button.onclick = () => { takeStop(stop); run(); };
  return html("li", {}, button);
}));
byId("form").onsubmit = (event) => { event.preventDefault(); run(); };
byId("reset").onclick = reset;
byId("file").onchange = showContent;
byId("content").oninput = () => files.set(byId("file").value, toBytes(byId("content").value));
document.onkeydown = (event) => {
  if (event.key === "Enter" && (event.ctrlKey || event.metaKey)) {
    event.preventDefault();
    run();
  }
};
reset();
takeStop(tour[0]);
