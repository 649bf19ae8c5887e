#include "Cli.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace kestrel::cli {

Args::Args(const std::vector<std::string> &argv, const std::vector<std::string> &valueOptions) {
  bool onlyPositional = false;
  for (size_t i = 0; i < argv.size(); ++i) {
    const std::string &a = argv[i];
    if (onlyPositional || a.size() < 3 || a.compare(0, 2, "--") != 0) {
      if (a == "--") {
        onlyPositional = true;
        continue;
      }
      if (!onlyPositional && a.size() > 1 && a[0] == '-') singleDash_.push_back(a);
      positional_.push_back(a);
      continue;
    }
    std::string name = a.substr(2), value;
    size_t eq = name.find('=');
    bool takesValue = false;
    for (const auto &v : valueOptions)
      takesValue |= v == name.substr(0, eq);
    if (eq != std::string::npos) {
      value = name.substr(eq + 1);
      name = name.substr(0, eq);
    } else if (takesValue) {
      if (i + 1 >= argv.size()) throw UsageError{"option --" + name + " needs a value"};
      value = argv[++i];
    }
    flags_.emplace(name, value);
  }
}

std::string Args::Value(const std::string &name, const std::string &fallback) const {
  auto it = flags_.find(name);
  return it == flags_.end() ? fallback : it->second;
}

std::vector<std::string> Args::Values(const std::string &name) const {
  std::vector<std::string> out;
  auto [b, e] = flags_.equal_range(name);
  for (auto it = b; it != e; ++it)
    out.push_back(it->second);
  return out;
}

int64_t Args::Number(const std::string &name, int64_t fallback) const {
  if (!Has(name)) return fallback;
  std::string v = Value(name);
  try {
    size_t used = 0;
    long long n = std::stoll(v, &used, 10);
    if (used == v.size()) return n;
  } catch (...) {
  }
  throw UsageError{"option --" + name + " needs a whole number, not '" + v + "'"};
}

std::vector<std::string> Args::Unknown(const std::vector<std::string> &known) const {
  std::vector<std::string> out;
  for (const auto &[name, value] : flags_) {
    bool ok = false;
    for (const auto &k : known)
      ok |= k == name;
    if (!ok) out.push_back("--" + name);
  }
  return out;
}

void Args::RefuseSingleDash() const {
  if (!singleDash_.empty())
    throw UsageError{"unknown option " + singleDash_.front() +
                     " (options take two dashes; put -- before an argument that starts with -)"};
}

namespace {
std::map<std::string, Command> &Registry() {
  static std::map<std::string, Command> commands;
  return commands;
}
} // namespace

CommandRegistration::CommandRegistration(Command command) {
  std::string name = command.name;
  Registry().emplace(name, std::move(command));
}

const std::map<std::string, Command> &Commands() {
  return Registry();
}

std::string EscapeControls(const std::string &text, bool json) {
  std::string out;
  for (unsigned char c : text) {
    if (json && (c == '"' || c == '\\')) {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c < 0x20 || c == 0x7F) {
      char buf[8];
      if (json)
        std::snprintf(buf, sizeof buf, "\\u%04x", c);
      else
        std::snprintf(buf, sizeof buf, "\\x%02x", c);
      out += buf;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out;
}

std::string JsonString(const std::string &utf8) {
  return "\"" + EscapeControls(utf8, true) + "\"";
}

std::string Utf16ToUtf8Lossless(const std::u16string &text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    uint32_t c = text[i];
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

namespace {

// Paths of the files held, read by the signal handler: fixed buffers, so
// that the handler needs no allocation.
constexpr int kHeldFiles = 8;
char gHeld[kHeldFiles][4096];
volatile std::sig_atomic_t gHeldUsed[kHeldFiles];

extern "C" void RemoveHeldAndEnd(int signal) {
  for (int i = 0; i < kHeldFiles; ++i)
    if (gHeldUsed[i]) ::unlink(gHeld[i]);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

} // namespace

TemporaryFile::TemporaryFile(const std::string &path) {
  if (path.size() >= sizeof gHeld[0]) return;
  for (int i = 0; i < kHeldFiles; ++i)
    if (!gHeldUsed[i]) {
      std::memcpy(gHeld[i], path.c_str(), path.size() + 1);
      gHeldUsed[i] = 1;
      slot_ = i;
      return;
    }
}

TemporaryFile::~TemporaryFile() {
  if (slot_ >= 0) gHeldUsed[slot_] = 0;
}

void InstallInterruptCleanup() {
  for (int signal : {SIGINT, SIGTERM, SIGHUP})
    std::signal(signal, RemoveHeldAndEnd);
}

static int64_t NowMs() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

Progress::Progress(bool forced) : enabled_(forced || isatty(STDERR_FILENO)) {}
Progress::~Progress() {
  Done();
}

void Progress::Update(const std::string &text) {
  if (!enabled_) return;
  int64_t now = NowMs();
  if (shown_ && now - lastMs_ < 100) return;
  lastMs_ = now;
  std::fprintf(stderr, "\r\033[K%s", text.c_str());
  std::fflush(stderr);
  shown_ = true;
}

void Progress::Done() {
  if (shown_) std::fprintf(stderr, "\r\033[K");
  shown_ = false;
}

} // namespace kestrel::cli
