// ZRDynamicLoadedLibrary on the module built beside the tests: loading, failures and their
// texts, addresses that outlive the object, and the name decoration.
#include "zrcommon920r/common/dynlib.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using ZRCommon_920::ZRDynamicLoadedLibrary;
using AddFn = int (*)(int, int);
const std::string kModule = ZR_TEST_MODULE_PATH;

TEST(ZRDynamicLoadedLibrary, LoadsCallsAndReportsFailures) {
  const std::string stem = kModule.substr(0, kModule.size() - 3);  // without ".so"
  AddFn add = nullptr;
  for (const std::string & name :
       {kModule, ZRDynamicLoadedLibrary::ZRDecorateDynamicPathName(stem)}) {
    SCOPED_TRACE(name);
    ZRDynamicLoadedLibrary lib(name, 0);
    EXPECT_EQ(lib.GetSymbolAddress("zr_test_module_absent"), nullptr);
    EXPECT_NE(lib.GetErrorString().find("zr_test_module_absent"), std::string::npos)
        << lib.GetErrorString();
    EXPECT_EQ(lib.LoadLibraryNow(), 0);
    EXPECT_EQ(lib.GetErrorString(), "");  // emptied by the next call
    add = reinterpret_cast<AddFn>(lib.GetSymbolAddress("zr_test_module_add"));
    ASSERT_NE(add, nullptr) << lib.GetErrorString();
    EXPECT_EQ(add(2, 40), 42);
  }
  EXPECT_EQ(add(-5, 3), -2);  // never closed: callable after its object is gone

  const std::string missing = kModule + ".missing";
  ZRDynamicLoadedLibrary absent(missing, 0);
  EXPECT_EQ(absent.LoadLibraryNow(), -1);
  EXPECT_NE(absent.GetErrorString().find(missing), std::string::npos) << absent.GetErrorString();
  EXPECT_EQ(absent.GetSymbolAddress("zr_test_module_add"), nullptr);
  EXPECT_NE(absent.GetErrorString().find(missing), std::string::npos);
}

TEST(ZRDynamicLoadedLibrary, DecorationComparesTheLastThreeCharactersWithoutCase) {
  struct {
    int line;
    const char *path, *want;
  } const cases[] = {
      {__LINE__, "a", "a.so"},
      {__LINE__, "a.so", "a.so"},
      {__LINE__, "/x/libA.SO", "/x/libA.SO"},
      {__LINE__, "a.sO", "a.sO"},
      {__LINE__, ".so", ".so.so"},
      {__LINE__, "", ".so"},  // 3 or fewer: always
      {__LINE__, "libm.so.6", "libm.so.6.so"},
      {__LINE__, "a_so", "a_so.so"},
  };
  for (const auto & c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(ZRDynamicLoadedLibrary::ZRDecorateDynamicPathName(c.path), c.want);
  }
}

}  // namespace
