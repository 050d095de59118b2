// The floor of the benchmarks: for each job, it does only the work that no program can avoid, so
// that the product's time can be compared with it.
//
//   floor small|big|interleaved|many|history     (in the `work` directory of the generated data)
//
// It makes the same system calls, reads each byte once, converts only the numbers that are used or
// written, and writes the same bytes. It has no statement, no map, no checks and no error handling,
// and knows what the generated files look like.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

// Reading

constexpr std::size_t piece_size = std::size_t{32} * 1024;

const char* find(std::string_view text, char wanted) {
  return static_cast<const char*>(std::memchr(text.data(), wanted, text.size()));
}

template <class Use>
void for_each_line(const std::string& path, Use use) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return;
  }
  const int file = open(path.c_str(), O_RDONLY);
  static char buffer[2 * piece_size];
  std::size_t rest = 0;  // bytes of an incomplete line at the end of the last piece
  for (;;) {
    const ssize_t size = read(file, buffer + rest, piece_size);
    if (size <= 0) {
      break;
    }
    const char* line = buffer;
    const char* const end = buffer + rest + size;
    while (const char* const line_feed = find({line, end}, '\n')) {
      use(std::string_view(line, line_feed));
      line = line_feed + 1;
    }
    rest = static_cast<std::size_t>(end - line);
    std::memmove(buffer, line, rest);
  }
  close(file);
}

// Every line of a task's key-value files, as key and value.
template <class Use>
void for_each_pair(const std::string& task, Use use) {
  for (const char* const name : {"/.vorq.result.kv", "/.vorq.values.kv", "/.vorq.dbcollect.user.kv",
                                 "/.vorq.values.user.kv"}) {
    for_each_line(task + name, [&](std::string_view line) {
      const char* const equals = find(line, '=');
      use(std::string_view(line.data(), equals), std::string_view(equals + 1, line.end()));
    });
  }
}

bool is_used(std::string_view key) {
  return key.ends_with(".charge.resp");
}

double to_double(std::string_view text) {
  double value = 0.0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

struct Symbol {
  std::array<char, 3> text{};
  unsigned char size = 0;

  explicit Symbol(std::string_view symbol) : size(static_cast<unsigned char>(symbol.size())) {
    std::memcpy(text.data(), symbol.data(), symbol.size());
  }
  std::string_view view() const { return {text.data(), size}; }
};

using Symbols = std::vector<Symbol>;
using Positions = std::vector<std::array<double, 3>>;

std::string find_geometry(const std::string& task) {
  std::string path;
  DIR* const listing = opendir(task.c_str());
  while (const dirent* const entry = readdir(listing)) {
    if (std::string_view(entry->d_name).starts_with("last_")) {
      path = task + "/" + entry->d_name;
    }
  }
  closedir(listing);
  return path;
}

// The symbol of each atom of the task's geometry, and the rest of its line.
template <class Use>
void for_each_atom(const std::string& task, Use use) {
  int headers = 2;
  for_each_line(find_geometry(task), [&](std::string_view line) {
    if (headers > 0) {
      --headers;
      return;
    }
    const char* const space = find(line, ' ');
    use(std::string_view(line.data(), space), std::string_view(space, line.end()));
  });
}

void read_geometry(const std::string& task, Symbols& symbols, Positions& positions) {
  for_each_atom(task, [&](std::string_view symbol, std::string_view rest) {
    symbols.emplace_back(symbol);
    std::array<double, 3> position{};
    const char* number = rest.data();
    for (double& coordinate : position) {
      number = std::from_chars(number + 1, rest.end(), coordinate).ptr;
    }
    positions.push_back(position);
  });
}

void compare_symbols(const std::string& task, const Symbols& symbols) {
  auto expected = symbols.begin();
  for_each_atom(task, [&](std::string_view symbol, std::string_view) {
    if (symbol != (expected++)->view()) {
      std::exit(1);
    }
  });
}

void look_for_directory(const std::string& task) {
  struct stat status {};
  stat(task.c_str(), &status);
}

// Writing

class Text {
 public:
  explicit Text(std::size_t capacity)
      : bytes_(std::make_unique_for_overwrite<char[]>(capacity)),
        end_(bytes_.get()),
        limit_(bytes_.get() + capacity) {}

  void put(std::string_view text) {
    std::memcpy(end_, text.data(), text.size());
    end_ += text.size();
  }
  void put_count(std::size_t count) { end_ = std::to_chars(end_, limit_, count).ptr; }
  void put_value(double value) {
    end_ = std::to_chars(end_, limit_, value, std::chars_format::general, 15).ptr;
  }
  void put_coordinate(double value) {
    end_ = std::to_chars(end_, limit_, value, std::chars_format::fixed, 10).ptr;
  }

  bool write_to(int file) const {
    const auto size = static_cast<std::size_t>(end_ - bytes_.get());
    return write(file, bytes_.get(), size) == static_cast<ssize_t>(size);
  }
  void write_to(const char* path, int mode) const {
    const int file = open(path, O_WRONLY | O_CREAT | mode, 0666);
    if (!write_to(file)) {
      std::exit(1);
    }
    close(file);
  }

 private:
  std::unique_ptr<char[]> bytes_;
  char* end_;
  char* limit_;
};

void write_values(std::string_view target, const std::vector<double>& values) {
  constexpr std::size_t longest_line = 64;
  Text text(values.size() * longest_line);
  for (std::size_t i = 0; i < values.size(); ++i) {
    text.put("atoms.");
    text.put_count(i + 1);
    text.put(".");
    text.put(target);
    text.put("=");
    text.put_value(values[i]);
    text.put("\n");
  }
  text.write_to(".vorq.values.kv", O_APPEND);
}

void write_extxyz(const Symbols& symbols, const Positions& positions,
                  const std::vector<double>& values) {
  constexpr std::size_t header = 128;
  constexpr std::size_t longest_line = 128;
  Text text(header + values.size() * longest_line);
  text.put_count(values.size());
  text.put("\nProperties=species:S:1:pos:R:3:charge.mean:R:1 generated_by=vqvec\n");
  for (std::size_t i = 0; i < values.size(); ++i) {
    text.put(symbols[i].view());
    for (const double coordinate : positions[i]) {
      text.put(" ");
      text.put_coordinate(coordinate);
    }
    text.put(" ");
    text.put_value(values[i]);
    text.put("\n");
  }
  text.write_to("mean.extxyz", O_TRUNC);
}

void report(std::size_t count, std::string_view target, std::string_view outputs) {
  Text text(128);
  text.put("atomvec wrote ");
  text.put_count(count);
  text.put(" atom values for '");
  text.put(target);
  text.put("'");
  text.put(outputs);
  text.put("\n");
  text.write_to(STDOUT_FILENO);
}

// The jobs

// mean(a:charge.resp, b:charge.resp) --check same_atoms [--sum @a.charge] --out mean.extxyz
void mean_of_two(bool shifts_to_total) {
  std::vector<double> values;
  Symbols symbols;
  Positions positions;
  double total = 0.0;
  look_for_directory("../a");
  for_each_pair("../a", [&](std::string_view key, std::string_view value) {
    if (is_used(key)) {
      values.push_back(to_double(value));
    } else if (key == "charge") {
      total = to_double(value);
    }
  });
  read_geometry("../a", symbols, positions);

  look_for_directory("../b");
  double* sum = values.data();
  for_each_pair("../b", [&](std::string_view key, std::string_view value) {
    if (is_used(key)) {
      *sum++ += to_double(value);
    }
  });
  compare_symbols("../b", symbols);

  for (double& value : values) {
    value /= 2.0;
  }
  if (shifts_to_total) {
    double now = 0.0;
    for (const double value : values) {
      now += value;
    }
    const double shift = (total - now) / static_cast<double>(values.size());
    for (double& value : values) {
      value += shift;
    }
  }
  write_values("charge.mean", values);
  write_extxyz(symbols, positions, values);
  report(values.size(), "charge.mean", " and extxyz mean.extxyz");
}

std::vector<std::string> list_tasks() {
  std::vector<std::string> tasks;
  for (const char* const root : {"..", "."}) {
    DIR* const listing = opendir(root);
    while (const dirent* const entry = readdir(listing)) {
      if (entry->d_type == DT_DIR && std::string_view(entry->d_name).starts_with("run")) {
        tasks.emplace_back(entry->d_name);
      }
    }
    closedir(listing);
  }
  std::sort(tasks.begin(), tasks.end());
  return tasks;
}

// wmean(run*:charge.resp, weight) --check same_atoms
void weighted_mean_of_all() {
  std::vector<double> sums;
  Symbols symbols;
  double total_weight = 0.0;
  for (const std::string& name : list_tasks()) {
    const std::string task = "../" + name;
    look_for_directory(task);
    double weight = 0.0;
    std::size_t atom = 0;
    for_each_pair(task, [&](std::string_view key, std::string_view value) {
      if (is_used(key)) {
        if (atom == sums.size()) {
          sums.push_back(0.0);
        }
        sums[atom++] += to_double(value) * weight;
      } else if (key == "weight") {
        weight = to_double(value);
      }
    });
    total_weight += weight;
    if (symbols.empty()) {
      for_each_atom(
          task, [&](std::string_view symbol, std::string_view) { symbols.emplace_back(symbol); });
    } else {
      compare_symbols(task, symbols);
    }
  }
  for (double& sum : sums) {
    sum /= total_weight;
  }
  write_values("charge.mean", sums);
  report(sums.size(), "charge.mean", "");
}

// scale(a:charge.resp, 0.5), where the last value of each atom wins
void half_of_latest() {
  constexpr std::size_t longest_value = 23;
  struct Value {
    std::array<char, longest_value> text;
    unsigned char size;
  };
  std::vector<Value> latest;
  look_for_directory("../a");
  for_each_pair("../a", [&](std::string_view key, std::string_view text) {
    constexpr std::size_t prefix = std::string_view("atoms.").size();
    std::size_t atom = 0;
    std::from_chars(key.data() + prefix, key.end(), atom);
    if (is_used(key)) {
      if (atom > latest.size()) {
        latest.resize(atom);
      }
      Value& value = latest[atom - 1];
      std::memcpy(value.text.data(), text.data(), text.size());
      value.size = static_cast<unsigned char>(text.size());
    }
  });
  find_geometry("../a");  // there is none, but only listing the directory can show it

  std::vector<double> values;
  for (const Value& value : latest) {
    values.push_back(to_double({value.text.data(), value.size}) * 0.5);
  }
  write_values("charge.half", values);
  report(values.size(), "charge.half", "");
}

}  // namespace

int main(int, char** argv) {
  const std::string_view job = argv[1];
  if (job == "small") {
    mean_of_two(true);
  } else if (job == "big" || job == "interleaved") {
    mean_of_two(false);
  } else if (job == "many") {
    weighted_mean_of_all();
  } else if (job == "history") {
    half_of_latest();
  }
  return 0;
}
