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
                                           {73, &Wdef::initialization},
                                           {87, &SortableLists::initialization}};
  for (auto [row, init] : own)
    EXPECT_EQ(table->UnitInfo[row].Init, init) << "row " << row;
  EXPECT_EQ(table->UnitInfo[86].FInit, &language_detailsU::Finalization);
  for (int r = 0; r < 88; ++r) {
    ASSERT_NE(table->UnitInfo[r].Init, nullptr);
    ASSERT_NE(table->UnitInfo[r].FInit, nullptr);
  }
  EXPECT_STREQ(StartupRowName(0), "SysInit");
  EXPECT_STREQ(StartupRowName(14), "myKpSmall");
  EXPECT_STREQ(StartupRowName(2), "host unit");
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
} // namespace

TEST(Frame, PackageLoadRunsInOrderAndUnloadInReverse) {
  TUnitProc a1 = [] { gTrace.push_back("a+"); }, a2 = [] { gTrace.push_back("a-"); };
  TUnitProc b1 = [] { gTrace.push_back("b+"); }, b2 = [] { gTrace.push_back("b-"); };
  const PackageUnitEntry rows[] = {{a1, a2}, {b1, b2}};
  PackageInfoTable table{2, rows};
  TLibModule m{};
  gTrace.clear();
  PackageLoad(&table, &m);
  PackageUnload(&table, &m);
  EXPECT_EQ(gTrace, (std::vector<std::string>{"a+", "b+", "b-", "a-"}));

  // A failing start-up undoes what had started and passes the error on.
  const PackageUnitEntry bad[] = {{a1, a2}, {[] { throw std::runtime_error("failed"); }, b2}};
  PackageInfoTable badTable{2, bad};
  gTrace.clear();
  EXPECT_THROW(PackageLoad(&badTable, &m), std::runtime_error);
  EXPECT_EQ(gTrace, (std::vector<std::string>{"a+", "a-"}));
}

TEST(Frame, LoadEntryRegistersTheModuleRecord) {
  TLibModule &m = KestrelLibModule();
  EXPECT_NE(m.Instance, nullptr);
  auto listed = [&] {
    bool found = false;
    for (TLibModule *p = LibModuleList(); p; p = p->Next)
      found |= p == &m;
    return found;
  };
  EXPECT_TRUE(listed());
  // Thread reasons do nothing and still answer true.
  EXPECT_EQ(LibraryEntry(m.Instance, DLL_THREAD_ATTACH, nullptr), -1);
  EXPECT_EQ(LibraryEntry(m.Instance, DLL_PROCESS_DETACH, nullptr), -1);
  EXPECT_FALSE(listed());
  EXPECT_EQ(LibraryEntry(m.Instance, DLL_PROCESS_ATTACH, nullptr), -1);
  EXPECT_EQ(LibModuleList(), &m);
}
