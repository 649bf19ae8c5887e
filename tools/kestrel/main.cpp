// kestrel: the command-line companion of the library.
#include <cstdio>
#include <iostream>

#include <kestrel/kestrel.h>

#include "Cli.h"

using namespace kestrel;

static void PrintHelp() {
  std::cout << "usage: kestrel COMMAND [ARGS...]\n\ncommands:\n";
  for (const auto &[name, cmd] : cli::Commands())
    std::printf("  %-10s %s\n", name.c_str(), cmd.summary.c_str());
  std::cout << "\nkestrel COMMAND --help shows the command's usage.\n";
}

int main(int argc, char **argv) {
  if (argc < 2 || std::string(argv[1]) == "--help" || std::string(argv[1]) == "-h") {
    PrintHelp();
    return argc < 2 ? 2 : 0;
  }
  auto it = cli::Commands().find(argv[1]);
  if (it == cli::Commands().end()) {
    std::cerr << "kestrel: unknown command '" << argv[1] << "'\n";
    PrintHelp();
    return 2;
  }
  const cli::Command &cmd = it->second;
  std::vector<std::string> rest(argv + 2, argv + argc);
  cli::InstallInterruptCleanup();
  Initialize();
  int rc = 0;
  try {
    cli::Args args(rest, cmd.valueOptions);
    if (args.Has("help")) {
      std::cout << "usage: kestrel " << cmd.usage << "\n";
    } else {
      rc = cmd.run(args);
    }
  } catch (const cli::UsageError &e) {
    std::cerr << "kestrel " << cmd.name << ": " << e.message << " (see kestrel " << cmd.name
              << " --help)\n";
    rc = 2;
  } catch (const kestrel::Exception &e) {
    std::cerr << "kestrel " << cmd.name << ": " << e.Message() << "\n";
    rc = 2;
  } catch (const std::exception &e) {
    std::cerr << "kestrel " << cmd.name << ": " << e.what() << "\n";
    rc = 2;
  }
  Finalize();
  return rc;
}
