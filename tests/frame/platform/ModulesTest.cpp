// Modules of the platform layer: the library's own handle and file, loading.
#include <gtest/gtest.h>

#include <filesystem>

#include <kestrel/frame/Frame.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {
namespace {

TEST(Modules, NamesOfTheProgramAndTheLibrary) {
  EXPECT_EQ(GetModuleFileNameA(nullptr), std::filesystem::read_symlink("/proc/self/exe").string());
  const std::string library = GetModuleFileNameA(KestrelModuleHandle());
  EXPECT_NE(library.find("libkestrelcore"), std::string::npos) << library;
  EXPECT_EQ(GetModuleFileNameA(reinterpret_cast<HMODULE>(1)), "");
}

TEST(Modules, LoadFindAndFree) {
  const std::string library = GetModuleFileNameA(KestrelModuleHandle());
  HMODULE m = LoadLibraryA(library.c_str());
  ASSERT_NE(m, nullptr);
  EXPECT_NE(GetProcAddress(m, "_ZN7kestrel10InitializeEv"), nullptr); // kestrel::Initialize
  EXPECT_EQ(GetProcAddress(m, "no_such_symbol"), nullptr);
  EXPECT_EQ(GetProcAddress(nullptr, "_ZN7kestrel10InitializeEv"), nullptr);
  EXPECT_TRUE(FreeLibrary(m));
  EXPECT_FALSE(FreeLibrary(nullptr));
  EXPECT_EQ(LoadLibraryA("/no/such/library.so"), nullptr);
}

} // namespace
} // namespace kestrel
