// The start-up and finalisation of each of the library's own units, in the
// order of their rows in the start-up table, and the way a unit defines them.
#pragma once

#include <kestrel/frame/host/Package.h>

// The library's own rows of the start-up table: row number and unit. The one
// list of them; the entries below and the table in Frame.cpp are made from it.
#define KESTREL_UNIT_ROWS(X)                                                                       \
  X(14, myKpSmall)                                                                                 \
  X(17, Unicode)                                                                                   \
  X(18, WinGenOk)                                                                                  \
  X(19, bare_assemb_types)                                                                         \
  X(20, my_types)                                                                                  \
  X(72, myFileStreamU)                                                                             \
  X(73, Wdef)                                                                                      \
  X(76, myMasks)                                                                                   \
  X(77, PeruseDir)                                                                                 \
  X(78, bare_assemb)                                                                               \
  X(79, file_utils)                                                                                \
  X(80, myStreamMemLists)                                                                          \
  X(81, logging_utilities)                                                                         \
  X(82, inifileU2)                                                                                 \
  X(83, locale_utilities)                                                                          \
  X(84, LemmaStopMatchTypes)                                                                       \
  X(85, my_consts)                                                                                 \
  X(86, language_detailsU)                                                                         \
  X(87, SortableLists)

#define KESTREL_UNIT_ENTRIES(Row, Unit)                                                            \
  namespace kestrel::Unit {                                                                        \
  void initialization();                                                                           \
  void Finalization();                                                                             \
  }
KESTREL_UNIT_ROWS(KESTREL_UNIT_ENTRIES)
#undef KESTREL_UNIT_ENTRIES

// Defines a unit's start-up pair around its start-up count. Start and Stop
// are the unit's work, run on the first start-up and the last finalisation.
#define KESTREL_DEFINE_UNIT(Unit, Start, Stop)                                                     \
  namespace kestrel::Unit {                                                                        \
  namespace {                                                                                      \
  ::kestrel::UnitStartCount gStartCount;                                                           \
  }                                                                                                \
  void initialization() {                                                                          \
    if (gStartCount.StartUp()) Start();                                                            \
  }                                                                                                \
  void Finalization() {                                                                            \
    if (gStartCount.Finish()) Stop();                                                              \
  }                                                                                                \
  }

namespace kestrel {
// The Start or Stop of a unit that has nothing to do.
inline void NoUnitWork() {}
} // namespace kestrel
