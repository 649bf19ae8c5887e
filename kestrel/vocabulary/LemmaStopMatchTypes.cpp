// Unit LemmaStopMatchTypes: the names of the three list options. They hold
// their texts from load; the finalisation releases them.
#include <kestrel/vocabulary/LemmaStopMatchTypes.h>

#include <kestrel/frame/Units.h>

namespace kestrel {

EnumTable<TLemmaMatchStopOptions, std::string, kLemmaMatchStopCount> names_of_processes;

namespace {

void NameProcesses() {
  names_of_processes[TLemmaMatchStopOptions::as_lemma] = "lemmas";
  names_of_processes[TLemmaMatchStopOptions::as_match] = "match list";
  names_of_processes[TLemmaMatchStopOptions::as_stop] = "stop list";
}

// Constant from load, as typed constants are.
const bool gNamedAtLoad = (NameProcesses(), true);

// A start-up after a full finalisation (the library brought up again without
// being unloaded) puts the names back.
void StartUp() {
  if (names_of_processes.rows[0].empty()) NameProcesses();
}

void Stop() {
  for (std::string &name : names_of_processes.rows)
    std::string().swap(name);
}

} // namespace
} // namespace kestrel

KESTREL_DEFINE_UNIT(LemmaStopMatchTypes, ::kestrel::StartUp, ::kestrel::Stop)
