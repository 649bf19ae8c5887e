// Unit Wdef: display string tables, the strings of exported rows and columns,
// and the questions about the session.
#include <kestrel/vocabulary/WdefDisplay.h>

#include <kestrel/vocabulary/WdefUnitInternal.h>

namespace kestrel {

std::string maths_functions[kMathsFunctionCount];
EnumTable<type_mode_type, std::string, 3> type_mode_str;
EnumTable<TMutualInfoProc, std::string, 4> MutualInfoChoices;
EnumTable<TBaseDescriptivesSet, std::string, 5> TBaseDescriptivesStrings;

std::string txt_column_separator;
std::string row_separator_string_on;
std::string row_separator_string_off;
std::string saveas_filename;

char arrchar255[256];
char16_t arrchar255W[256];
uint32_t AccelTbl = 0;

namespace {

template <size_t N> void Fill(std::string (&rows)[N], const char *const (&texts)[N]) {
  for (size_t i = 0; i < N; ++i)
    rows[i] = texts[i];
}

} // namespace

void FillDisplayTables() {
  Fill(maths_functions, {"(pi)", "RelC", "Sqrt", "Exp", "Sin", "Cos", "Log", "Sqr", "Rel", "Abs"});
  Fill(type_mode_str.rows, {"Type-in", "Set", "Edit"});
  Fill(MutualInfoChoices.rows, {"Specific Mutual Information", "MI3", "Z Score", "Log likelihood"});
  Fill(TBaseDescriptivesStrings.rows, {"Total", "Max", "Min", "Mean", "Sd."});
}

namespace {
// Constant from load, as typed constants are.
const bool gFilledAtLoad = (FillDisplayTables(), true);
} // namespace

void SetDisplayStrings() {
  txt_column_separator = "\t";
  row_separator_string_on = "\r\n  <ENTRY>";
  row_separator_string_off = "\r\n  </ENTRY>";
  saveas_filename.clear();
}

int32_t ScreenPixelsPerInch() {
  HDC dc = GetDC(nullptr);
  const int32_t result = GetDeviceCaps(dc, LOGPIXELSX);
  ReleaseDC(nullptr, dc);
  return result;
}

std::string Registry_Current_User() {
  char buffer[100];
  uint32_t size = sizeof buffer;
  if (!GetUserNameA(buffer, &size)) return "?????";
  return std::string(buffer);
}

void Yikes() {}

bool testing() {
  return true;
}

} // namespace kestrel
