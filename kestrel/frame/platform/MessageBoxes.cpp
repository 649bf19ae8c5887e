// Message boxes: the replaceable handler, the terminal and the safe answers.
#include <kestrel/frame/platform/Platform.h>

#include <cctype>
#include <iostream>
#include <mutex>
#include <unistd.h>
#include <vector>

namespace kestrel {

namespace {

struct Button {
  const char *label;
  int32_t id;
};

std::vector<Button> ButtonsOf(uint32_t type) {
  switch (type & 0x0F) {
  case MB_OKCANCEL:
    return {{"OK", IDOK}, {"Cancel", IDCANCEL}};
  case MB_ABORTRETRYIGNORE:
    return {{"Abort", IDABORT}, {"Retry", IDRETRY}, {"Ignore", IDIGNORE}};
  case MB_YESNOCANCEL:
    return {{"Yes", IDYES}, {"No", IDNO}, {"Cancel", IDCANCEL}};
  case MB_YESNO:
    return {{"Yes", IDYES}, {"No", IDNO}};
  case MB_RETRYCANCEL:
    return {{"Retry", IDRETRY}, {"Cancel", IDCANCEL}};
  default:
    return {{"OK", IDOK}};
  }
}

int32_t AskOnTerminal(const std::string &text, const std::string &caption, uint32_t type) {
  std::vector<Button> buttons = ButtonsOf(type);
  std::cerr << "\n[" << caption << "]\n" << text << "\n";
  for (;;) {
    for (size_t i = 0; i < buttons.size(); ++i)
      std::cerr << (i ? " / " : "") << (i + 1) << " " << buttons[i].label;
    std::cerr << "? " << std::flush;
    std::string line;
    if (!std::getline(std::cin, line)) return SafeMessageBoxAnswer(type);
    for (size_t i = 0; i < buttons.size(); ++i) {
      std::string label = buttons[i].label;
      bool byNumber = line == std::to_string(i + 1);
      bool byLetter = !line.empty() && std::tolower(line[0]) == std::tolower(label[0]);
      if (byNumber || byLetter) return buttons[i].id;
    }
  }
}

int32_t DefaultMessageBox(const std::string &text, const std::string &caption, uint32_t type) {
  if (isatty(STDIN_FILENO) && isatty(STDERR_FILENO)) return AskOnTerminal(text, caption, type);
  return SafeMessageBoxAnswer(type);
}

std::mutex gBoxMutex;
MessageBoxHandler gBoxHandler;

} // namespace

int32_t SafeMessageBoxAnswer(uint32_t type) {
  switch (type & 0x0F) {
  case MB_OK:
    return IDOK;
  case MB_ABORTRETRYIGNORE:
    return IDABORT;
  case MB_YESNO:
    return IDNO;
  default:
    return IDCANCEL;
  }
}

MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler) {
  std::lock_guard<std::mutex> lock(gBoxMutex);
  std::swap(gBoxHandler, handler);
  return handler;
}

int32_t MessageBoxA(HWND, const char *text, const char *caption, uint32_t type) {
  MessageBoxHandler handler;
  {
    std::lock_guard<std::mutex> lock(gBoxMutex);
    handler = gBoxHandler;
  }
  std::string t = text ? text : "", c = caption ? caption : "";
  return handler ? handler(t, c, type) : DefaultMessageBox(t, c, type);
}

} // namespace kestrel
