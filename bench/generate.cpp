// Generates the task directories of the benchmarks, always the same ones:
//
//   generate pair DIRECTORY ATOMS PROPERTIES   tasks a and b; 1 property, or 3 interleaved
//   generate many DIRECTORY ATOMS TASKS        tasks run000001, run000002, ...
//   generate history DIRECTORY ATOMS RUNS      task a, with the values of RUNS runs in one file
//
// and an empty directory to run in, `work`.
#include <array>
#include <charconv>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view used_property = "charge.resp";

// splitmix64: the same numbers with every compiler and library.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t below(std::uint64_t limit) {
    state_ += 0x9E3779B97F4A7C15ULL;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return (z ^ (z >> 31)) % limit;
  }

 private:
  std::uint64_t state_;
};

// `digits` with a point before the last `decimals` of them, and either sign.
void append_decimal(std::string& text, std::uint64_t digits, std::size_t decimals, bool negative) {
  char buffer[24];
  std::string number(buffer, std::to_chars(buffer, std::end(buffer), digits).ptr);
  if (number.size() <= decimals) {
    number.insert(0, decimals + 1 - number.size(), '0');
  }
  number.insert(number.size() - decimals, 1, '.');
  text.append(negative ? "-" : "").append(number);
}

// Between 0.1 and 1, with 15 significant digits.
void append_value(std::string& text, Random& random, bool may_be_negative) {
  constexpr std::uint64_t least = 100'000'000'000'000;
  const std::uint64_t digits = least + random.below(9 * least);
  append_decimal(text, digits, 15, may_be_negative && random.below(2) == 0);
}

void append_atom(std::string& text, std::size_t atom, std::string_view property, Random& random) {
  text.append("atoms.").append(std::to_string(atom)).append(".").append(property).append("=");
  append_value(text, random, true);
  text += '\n';
}

std::string result_text(std::size_t atoms, std::size_t properties, Random& random) {
  constexpr std::array<std::string_view, 3> interleaved = {"charge.mulliken", used_property,
                                                           "spin.mulliken"};
  std::string text = "atom_count=" + std::to_string(atoms) + "\ncharge=0\nweight=";
  append_value(text, random, false);
  text += '\n';
  for (std::size_t atom = 1; atom <= atoms; ++atom) {
    if (properties == 1) {
      append_atom(text, atom, used_property, random);
      continue;
    }
    for (const std::string_view property : interleaved) {
      append_atom(text, atom, property, random);
    }
  }
  return text;
}

// The symbols depend only on the number of atoms: all tasks of a benchmark describe the same atoms.
std::string geometry_text(std::size_t atoms, Random& random) {
  constexpr std::array<std::string_view, 8> symbols = {"H", "C", "N", "O", "H", "C", "S", "Cl"};
  constexpr std::uint64_t box = 100'0000000000;  // in units of the tenth decimal
  Random symbol_choice(atoms);
  std::string text = std::to_string(atoms) + "\noptimised\n";
  for (std::size_t atom = 0; atom < atoms; ++atom) {
    text += symbols[symbol_choice.below(symbols.size())];
    for (int axis = 0; axis < 3; ++axis) {
      text += ' ';
      append_decimal(text, random.below(box), 10, random.below(2) == 0);
    }
    text += '\n';
  }
  return text;
}

void write(const fs::path& path, std::string_view text) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  if (!file.write(text.data(), static_cast<std::streamsize>(text.size())).flush()) {
    throw std::runtime_error("could not write " + path.string());
  }
}

void write_task(const fs::path& task, std::size_t atoms, std::size_t properties, Random& random) {
  write(task / ".vorq.result.kv", result_text(atoms, properties, random));
  write(task / "last_opt.xyz", geometry_text(atoms, random));
}

void make_many(const fs::path& directory, std::size_t atoms, std::size_t tasks, Random& random) {
  constexpr std::size_t name_digits = 6;
  for (std::size_t task = 1; task <= tasks; ++task) {
    const std::string number = std::to_string(task);
    const std::string zeros(name_digits - number.size(), '0');
    write_task(directory / ("run" + zeros + number), atoms, 1, random);
  }
}

void make_history(const fs::path& directory, std::size_t atoms, std::size_t runs, Random& random) {
  std::string text;
  for (std::size_t run = 0; run < runs; ++run) {
    for (std::size_t atom = 1; atom <= atoms; ++atom) {
      append_atom(text, atom, used_property, random);
    }
  }
  write(directory / "a" / ".vorq.values.kv", text);
}

void generate(const std::vector<std::string>& arguments) {
  const std::string& kind = arguments.at(0);
  const fs::path directory = arguments.at(1);
  const std::size_t atoms = std::stoull(arguments.at(2));
  const std::size_t number = std::stoull(arguments.at(3));
  Random random(1);
  if (kind == "pair") {
    write_task(directory / "a", atoms, number, random);
    write_task(directory / "b", atoms, number, random);
  } else if (kind == "many") {
    make_many(directory, atoms, number, random);
  } else if (kind == "history") {
    make_history(directory, atoms, number, random);
  } else {
    throw std::runtime_error("unknown kind: " + kind);
  }
  fs::create_directories(directory / "work");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    generate({argv + 1, argv + argc});
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "generate: " << failure.what() << '\n';
    return 1;
  }
}
