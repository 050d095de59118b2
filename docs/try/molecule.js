// The picture of an extended-XYZ file, and its values as a table. Uses the helpers of try.js.
"use strict";

// Covalent radii in angstrom, from Dalton Transactions 2008, 2832; the low-spin ones.
const radii = Object.fromEntries([...`H .31 He .28 Li 1.28 Be .96 B .84 C .76 N .71 O .66 F .57
  Ne .58 Na 1.66 Mg 1.41 Al 1.21 Si 1.11 P 1.07 S 1.05 Cl 1.02 Ar 1.06 K 2.03 Ca 1.76 Sc 1.7 Ti 1.6
  V 1.53 Cr 1.39 Mn 1.39 Fe 1.32 Co 1.26 Ni 1.24 Cu 1.32 Zn 1.22 Ga 1.22 Ge 1.2 As 1.19 Se 1.2
  Br 1.2 Kr 1.16 Rb 2.2 Sr 1.95 Y 1.9 Zr 1.75 Nb 1.64 Mo 1.54 Tc 1.47 Ru 1.46 Rh 1.42 Pd 1.39
  Ag 1.45 Cd 1.44 In 1.42 Sn 1.39 Sb 1.39 Te 1.38 I 1.39 Xe 1.4 Cs 2.44 Ba 2.15 La 2.07 Ce 2.04
  Pr 2.03 Nd 2.01 Pm 1.99 Sm 1.98 Eu 1.98 Gd 1.96 Tb 1.94 Dy 1.92 Ho 1.92 Er 1.89 Tm 1.9 Yb 1.87
  Lu 1.87 Hf 1.75 Ta 1.7 W 1.62 Re 1.51 Os 1.44 Ir 1.41 Pt 1.36 Au 1.36 Hg 1.32 Tl 1.45 Pb 1.46
  Bi 1.48 Th 2.06 Pa 2 U 1.96 Np 1.9 Pu 1.87`.matchAll(/(\w+) (\S+)/g)]
  .map(([, symbol, radius]) => [symbol, +radius]));
const bondTolerance = 0.3;  // how much longer than the sum of both radii a bond may be
const negative = [190, 54, 48], neutral = [244, 243, 240], positive = [42, 96, 168];

let molecule;  // the atoms, the bonds, the largest value, how it is turned, and units per angstrom

const add = (a, b) => a.map((x, i) => x + b[i]);
const times = (a, factor) => a.map((x) => x * factor);
const minus = (a, b) => add(a, times(b, -1));
const dot = (a, b) => a.reduce((sum, x, i) => sum + x * b[i], 0);
const norm = (a) => Math.sqrt(dot(a, a));
const rgb = (colour) => `rgb(${colour.map(Math.round).join(" ")})`;
const svg = (name, attributes, ...children) =>
  fill(document.createElementNS("http://www.w3.org/2000/svg", name), attributes, children);

function parseAtoms(lines) {
  const atoms = lines.map((line, n) => {
    const [symbol, x, y, z, value] = line.split(" ");
    return { name: symbol + (n + 1), bondRadius: radii[symbol], position: [+x, +y, +z], value,
      radius: 0.28 + 0.18 * Math.min(radii[symbol] ?? 1, 1.2) };
  });
  const centre = times(atoms.map((atom) => atom.position).reduce(add), 1 / atoms.length);
  return atoms.map((atom) => ({ ...atom, position: minus(atom.position, centre) }));
}

function findBonds(atoms) {
  return atoms.flatMap((one, n) => atoms.slice(n + 1)
    .filter((other) => norm(minus(one.position, other.position)) <
      one.bondRadius + other.bondRadius + bondTolerance)
    .map((other) => [one, other]));
}

// Turned by two angles in radians: what is in front moves to the right, and down.
function turned(axes, right, down) {
  const mix = (a, b, angle) => [add(times(a, Math.cos(angle)), times(b, Math.sin(angle))),
    minus(times(b, Math.cos(angle)), times(a, Math.sin(angle)))];
  const [x, side] = mix(axes[0], axes[2], right);
  return [x, ...mix(axes[1], side, -down)];
}

// The view in which the atoms, or the first hundred of them, hide each other least.
function bestView(atoms) {
  let best = { hidden: Infinity };
  for (let n = 0; n < 144; ++n) {
    const step = Math.PI / 12, upright = [[1, 0, 0], [0, 1, 0], [0, 0, 1]];
    const axes = turned(upright, (n % 12) * step, (Math.floor(n / 12) - 6) * step);
    const discs = atoms.slice(0, 100).map(({ position, radius }) =>
      ({ x: dot(axes[0], position), y: dot(axes[1], position), reach: radius + 0.2 }));
    const hidden = discs.reduce((sum, one, i) => discs.slice(i + 1).reduce((part, other) => part +
      Math.max(0, one.reach + other.reach - Math.hypot(one.x - other.x, one.y - other.y)), sum), 0);
    best = hidden < best.hidden ? { axes, hidden } : best;
  }
  return best.axes;
}

// Two digits, a sign, and a real minus, as on the axis of a plot.
function shortNumber(value) {
  const digits = Number.isFinite(value) ? Math.abs(value).toPrecision(2) : "?";
  return (value < 0 ? "−" : value > 0 ? "+" : "") + digits;
}

function drawAtom({ name, value, radius }, [x, y]) {
  const share = Math.abs(value) / (molecule.limit || 1);
  const colour = !Number.isFinite(share) ? [190, 190, 190]
    : add(times(neutral, 1 - share), times(value < 0 ? negative : positive, share));
  const isDark = dot(colour, [0.3, 0.59, 0.11]) < 125;
  const text = (content, dy, size) =>
    svg("text", { y: dy * radius, "font-size": size * radius }, content);
  return svg("g", { transform: `translate(${x} ${y})`, class: isDark ? "dark" : "" },
    svg("circle", { r: radius, fill: rgb(colour) }),
    text(name, -0.05, 0.62), text(shortNumber(+value), 0.5, 0.46));
}

const drawBond = ({ place: [x1, y1] }, { place: [x2, y2] }) => svg("line", { x1, y1, x2, y2 });

function draw(view) {
  molecule.axes = view;
  const { atoms, bonds, axes, scale } = molecule;
  atoms.forEach((atom) => {
    const [right, up, front] = axes.map((axis) => dot(axis, atom.position));
    atom.place = [right, -up, front];
  });
  // From back to front, and each bond behind both of its atoms.
  const shapes = [...bonds.map((bond) => [Math.min(...bond.map((atom) => atom.place[2])),
    drawBond(...bond)]), ...atoms.map((atom) => [atom.place[2], drawAtom(atom, atom.place)])]
    .sort((one, other) => one[0] - other[0]);
  byId("picture").replaceChildren(
    svg("g", { transform: `scale(${scale})` }, ...shapes.map(([, shape]) => shape)));
}

// Without a file, there is nothing to see.
function showMolecule(file) {
  byId("no-molecule").hidden = Boolean(file);
  byId("molecule").hidden = !file;
  if (!file) {
    return;
  }
  const [, header, ...lines] = file.text.trimEnd().split("\n");
  const label = header.match(/pos:R:3:(.*):R:1/)[1], atoms = parseAtoms(lines);
  const limit = Math.max(0, ...atoms.map(({ value }) => Math.abs(value)).filter(Number.isFinite));
  const extent = Math.max(1, ...atoms.map(({ position }) => norm(position)));
  molecule = { atoms, bonds: findBonds(atoms), limit, scale: 85 / (extent + 0.5) };
  draw(bestView(atoms));
  byId("caption").textContent = `${label} in ${baseName(file.path)}, ${atoms.length} atoms.`;
  byId("label").textContent = label;
  byId("values").replaceChildren(...atoms.map(({ name, value }) =>
    html("tr", {}, html("th", { scope: "row" }, name), html("td", {}, value))));
  byId("low").textContent = shortNumber(-limit);
  byId("high").textContent = shortNumber(limit);
  byId("legend").style.background =
    `linear-gradient(to right, ${[negative, neutral, positive].map(rgb).join(", ")})`;
}

const turn = (right, down) => draw(turned(molecule.axes, right, down));
const step = Math.PI / 18;
const keys = { Home: () => draw(bestView(molecule.atoms)),
  ArrowLeft: () => turn(-step, 0), ArrowRight: () => turn(step, 0),
  ArrowUp: () => turn(0, -step), ArrowDown: () => turn(0, step) };
byId("picture").onkeydown = (event) => {
  if (keys[event.key]) {
    keys[event.key]();
    event.preventDefault();  // the page does not scroll
  }
};
byId("picture").onpointerdown = ({ pointerId }) => byId("picture").setPointerCapture(pointerId);
byId("picture").onpointermove = ({ buttons, movementX, movementY }) => {
  if (buttons) {
    turn(movementX / 100, movementY / 100);
  }
};
