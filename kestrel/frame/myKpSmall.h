// The shared control state of the library and the tools, the progress and
// callback types, and small folder and message-box helpers.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

enum class Tpanic_mode : uint8_t { no_panic, stop_at_end_of_file, stop_asap, panic_stop };

enum class tprogress_types : uint8_t {
  progress_percent_this,
  progress_percent_overall,
  progress_mensagem,
  progress_speed,
  progress_memory,
  progress_clear_all,
  progress_clear_bars,
  progress_number,
  progress_error,
  progress_fatal_error
};
using tProgress_set = TSet<tprogress_types, 2>;
static_assert(sizeof(tProgress_set) == 2);

using TPointerOfObjectProc = OfObject<void(void *a)>;
using TCompareFunctOfObject = OfObject<int32_t(void *a)>;
using TCompare2FunctOfObject = OfObject<int32_t(void *a, void *b)>;
using TSeedFunct = OfObject<void()>;
using TYieldProcessProc = OfObject<void()>;

// Slots for the tools; the library itself only resets panic_mode at start-up
// and calls AYieldProcessProc.
extern Tpanic_mode panic_mode;
extern bool yes_to_all;
extern bool no_to_all;
extern TYieldProcessProc AYieldProcessProc;
extern int32_t CurrentBaseVersion;

// Called once per step of every long loop: one test and no call when no
// callback is set.
inline void MyYieldProcess() {
  if (AYieldProcessProc.Code)
    AYieldProcessProc.Code(AYieldProcessProc.Data);
}

// True when the process can enter the folder. Changes the current folder for
// a moment and puts it back, also when the result is false.
bool MyDirExists(const std::string &folder);
// Creates a folder and all its missing ancestors; reports no failure.
void MyForceCreateDirectories(const std::string &folder);
// A task-modal message box; the result is the button that closed it (1 = OK).
int32_t MyPMsgDlg(const std::string &message, const std::string &caption, uint16_t flags);
// Drops one trailing path delimiter.
std::string MyStripBackSlash(const std::string &path);

} // namespace kestrel
