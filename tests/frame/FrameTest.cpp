#include <gtest/gtest.h>

#include <kestrel/frame/Frame.h>
#include <kestrel/frame/Units.h>
#include <kestrel/frame/myKpSmall.h>

using namespace kestrel;

TEST(Frame, StartupTableHasOurUnitsAtTheirRows) {
  PackageInfo table = GetPackageInfoTable();
  ASSERT_EQ(table->UnitCount, 88);
  const std::pair<int, TUnitProc> own[] = {{14, &myKpSmall::initialization},
                                           {17, &Unicode::initialization},
                                           {18, &WinGenOk::initialization},
                                           {72, &myFileStreamU::initialization},
                                           {73, &Wdef::initialization},
                                           {77, &PeruseDir::initialization},
                                           {81, &logging_utilities::initialization},
                                           {86, &language_detailsU::initialization},
                                           {87, &SortableLists::initialization}};
  for (auto [row, init] : own)
    EXPECT_EQ(table->UnitInfo[row].Init, init) << "row " << row;
  EXPECT_EQ(table->UnitInfo[86].FInit, &language_detailsU::Finalization);
  int own_rows = 0;
  for (int r = 0; r < 88; ++r) {
    ASSERT_NE(table->UnitInfo[r].Init, nullptr);
    ASSERT_NE(table->UnitInfo[r].FInit, nullptr);
    own_rows += std::string(StartupRowName(r)) != "host unit" && r != 0 && r != 1 && r != 12 &&
                r != 13 && r != 15 && r != 16 && r != 71 && r != 74 && r != 75;
  }
  EXPECT_EQ(own_rows, 19);
  EXPECT_STREQ(StartupRowName(0), "SysInit");
  EXPECT_STREQ(StartupRowName(14), "myKpSmall");
}

TEST(Frame, CountsMakeNestedStartupsSafe) {
  // The test program has initialised once already: host rows stand at -1.
  EXPECT_EQ(HostRowCount(0), -1);
  EXPECT_EQ(HostRowCount(75), -1);
  panic_mode = Tpanic_mode::stop_asap;
  Initialize(); // only moves the counts
  EXPECT_EQ(panic_mode, Tpanic_mode::stop_asap);
  EXPECT_EQ(HostRowCount(0), -2);
  Finalize();
  EXPECT_EQ(HostRowCount(0), -1);
  panic_mode = Tpanic_mode::no_panic;
}

TEST(Frame, UnitCountRunsWorkOnFirstStartAndLastFinish) {
  UnitStartCount c;
  EXPECT_TRUE(c.StartUp());
  EXPECT_FALSE(c.StartUp());
  EXPECT_EQ(c.Value(), -2);
  EXPECT_FALSE(c.Finish());
  EXPECT_TRUE(c.Finish());
  EXPECT_EQ(c.Value(), 0);
}

namespace {
std::vector<std::string> gTrace;
void A1() {
  gTrace.push_back("a+");
}
void A2() {
  gTrace.push_back("a-");
}
void B1() {
  gTrace.push_back("b+");
}
void B2() {
  gTrace.push_back("b-");
}
void Boom() {
  throw std::runtime_error("start-up failed");
}
} // namespace

TEST(Frame, PackageLoadRunsInOrderAndUnloadInReverse) {
  const PackageUnitEntry rows[] = {{A1, A2}, {B1, B2}};
  PackageInfoTable table{2, rows};
  TLibModule m{};
  gTrace.clear();
  PackageLoad(&table, &m);
  PackageUnload(&table, &m);
  EXPECT_EQ(gTrace, (std::vector<std::string>{"a+", "b+", "b-", "a-"}));

  // A failing start-up undoes what had started and passes the error on.
  const PackageUnitEntry bad[] = {{A1, A2}, {Boom, B2}};
  PackageInfoTable badTable{2, bad};
  gTrace.clear();
  EXPECT_THROW(PackageLoad(&badTable, &m), std::runtime_error);
  EXPECT_EQ(gTrace, (std::vector<std::string>{"a+", "a-"}));
}

TEST(Frame, LoadEntryRegistersTheModuleRecord) {
  TLibModule &m = KestrelLibModule();
  EXPECT_NE(m.Instance, nullptr);
  bool found = false;
  for (TLibModule *p = LibModuleList(); p; p = p->Next)
    found |= p == &m;
  EXPECT_TRUE(found);
  // Thread reasons do nothing and still answer true.
  EXPECT_EQ(LibraryEntry(m.Instance, DLL_THREAD_ATTACH, nullptr), -1);
  EXPECT_EQ(LibraryEntry(m.Instance, DLL_PROCESS_DETACH, nullptr), -1);
  found = false;
  for (TLibModule *p = LibModuleList(); p; p = p->Next)
    found |= p == &m;
  EXPECT_FALSE(found);
  EXPECT_EQ(LibraryEntry(m.Instance, DLL_PROCESS_ATTACH, nullptr), -1);
  EXPECT_EQ(LibModuleList(), &m);
}
