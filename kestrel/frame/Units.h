// The start-up and finalisation of each of the library's own units, in the
// order of their rows in the start-up table.
#pragma once

#include <kestrel/frame/host/Package.h>

#define KESTREL_UNIT_ENTRIES(Unit)                                                                 \
  namespace kestrel::Unit {                                                                        \
  void initialization();                                                                           \
  void Finalization();                                                                             \
  }

KESTREL_UNIT_ENTRIES(myKpSmall)           // row 14
KESTREL_UNIT_ENTRIES(Unicode)             // row 17
KESTREL_UNIT_ENTRIES(WinGenOk)            // row 18
KESTREL_UNIT_ENTRIES(bare_assemb_types)   // row 19
KESTREL_UNIT_ENTRIES(my_types)            // row 20
KESTREL_UNIT_ENTRIES(myFileStreamU)       // row 72
KESTREL_UNIT_ENTRIES(Wdef)                // row 73
KESTREL_UNIT_ENTRIES(myMasks)             // row 76
KESTREL_UNIT_ENTRIES(PeruseDir)           // row 77
KESTREL_UNIT_ENTRIES(bare_assemb)         // row 78
KESTREL_UNIT_ENTRIES(file_utils)          // row 79
KESTREL_UNIT_ENTRIES(myStreamMemLists)    // row 80
KESTREL_UNIT_ENTRIES(logging_utilities)   // row 81
KESTREL_UNIT_ENTRIES(inifileU2)           // row 82
KESTREL_UNIT_ENTRIES(locale_utilities)    // row 83
KESTREL_UNIT_ENTRIES(LemmaStopMatchTypes) // row 84
KESTREL_UNIT_ENTRIES(my_consts)           // row 85
KESTREL_UNIT_ENTRIES(language_detailsU)   // row 86
KESTREL_UNIT_ENTRIES(SortableLists)       // row 87

#undef KESTREL_UNIT_ENTRIES

// Defines a unit's start-up pair around its start-up count. Start and Stop
// are the unit's work, run on the first start-up and the last finalisation.
#define KESTREL_DEFINE_UNIT(Unit, Start, Stop)                                                     \
  namespace kestrel::Unit {                                                                        \
  namespace {                                                                                      \
  ::kestrel::UnitStartCount gStartCount;                                                           \
  }                                                                                                \
  void initialization() {                                                                          \
    if (gStartCount.StartUp())                                                                     \
      Start();                                                                                     \
  }                                                                                                \
  void Finalization() {                                                                            \
    if (gStartCount.Finish())                                                                      \
      Stop();                                                                                      \
  }                                                                                                \
  }

namespace kestrel {
// The Start or Stop of a unit that has nothing to do.
inline void NoUnitWork() {}
} // namespace kestrel
