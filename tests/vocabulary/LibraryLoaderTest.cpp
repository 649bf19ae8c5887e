// Functions of outside libraries, loaded by name.
#include <gtest/gtest.h>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

TEST(LibraryLoader, FindsAFunctionAndClosesItsLibrary) {
  Tlibrary_rec rec = FindLibraryFunction(KESTREL_TEST_LIBRARY, "kestrel_test_answer");
  ASSERT_NE(rec.handle, nullptr);
  ASSERT_NE(rec.address, nullptr);
  EXPECT_EQ(reinterpret_cast<int (*)()>(rec.address)(), 42);
  CloseLibraryFunction(rec);
  EXPECT_EQ(rec.handle, nullptr);
  EXPECT_EQ(rec.address, nullptr);
  // A missing function keeps the handle to close.
  rec = FindLibraryFunction(KESTREL_TEST_LIBRARY, "no_such_function");
  EXPECT_NE(rec.handle, nullptr);
  EXPECT_EQ(rec.address, nullptr);
  CloseLibraryFunction(rec);
  EXPECT_EQ(rec.handle, nullptr);
}

TEST(LibraryLoader, MissingLibraryGivesAZeroRecord) {
  Tlibrary_rec rec = FindLibraryFunction("/no/such/library.so", "kestrel_test_answer");
  EXPECT_EQ(rec.handle, nullptr);
  EXPECT_EQ(rec.address, nullptr);
  CloseLibraryFunction(rec); // harmless
}

TEST(LinkedStack, SentinelPair) {
  LStackInit();
  ASSERT_NE(Lhead, nullptr);
  ASSERT_NE(Lz, nullptr);
  EXPECT_NE(Lhead, Lz);
  EXPECT_EQ(Lhead->next, Lz);
  EXPECT_EQ(Lz->next, Lz);
  LClearStack();
  EXPECT_EQ(Lhead, nullptr);
  EXPECT_EQ(Lz, nullptr);
  LClearStack(); // nothing left to free twice
}

} // namespace
} // namespace kestrel
