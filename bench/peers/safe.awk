# Loaded before another program of this directory, stops where vqvec would:
#
#   mawk -f safe.awk [-v needs_weight=1] -f wmean.awk ...
#
# Every value must be a number, and every atom must have one. The counts of atoms in the key-value
# files and the geometries must agree; the other program compares the symbols.
function stop(what) {
  print name ": " what > "/dev/stderr"
  failed = 1
  exit 1
}

function is_number(text) {
  return text ~ /^[-+]?([0-9]+[.]?[0-9]*|[.][0-9]+)([eE][-+]?[0-9]+)?$/
}

function end_file() {
  if (values != last_atom) stop("an atom has no value")
  if (is_geometry && lines != claimed) stop("the geometry is cut off")
  if (!expected_atoms) expected_atoms = claimed
  if (claimed && claimed != expected_atoms) stop("another number of atoms")
  if (values && expected_atoms && values != expected_atoms) stop("another number of values")
}

FNR == 1 {
  if (name) end_file()
  name = FILENAME
  is_geometry = FS == " "
  values = last_atom = claimed = lines = has_weight = 0
  split("", seen)
  if (is_geometry) claimed = $1 + 0
}

FS == "=" && $1 == "atom_count" {
  claimed = $2 + 0
}
FS == "=" && $1 == "weight" {
  if (!is_number($2)) stop("the weight is not a number")
  has_weight = 1
}
FS == "=" && $1 ~ /^atoms\.[0-9]+\.charge\.resp$/ {
  if (!is_number($2)) stop("not a number: " $2)
  if (needs_weight && !has_weight) stop("the weight is not before the values")
  atom = substr($1, 7) + 0
  if (!(atom in seen)) {
    seen[atom]
    ++values
  }
  if (atom > last_atom) last_atom = atom
}

is_geometry && FNR > 2 {
  ++lines
}

END {
  if (failed) exit 1
  end_file()
}
