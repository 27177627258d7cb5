// ZRDynamicLoadedLibrary: loads a shared library by name on first use and looks up its
// exported symbols, keeping the loader's error text of the last failure.
#ifndef ZRCOMMON920R_COMMON_DYNLIB_H
#define ZRCOMMON920R_COMMON_DYNLIB_H

#include <string>

namespace ZRCommon_920 {

// A shared library opened with dlopen(name, RTLD_NOW | RTLD_LOCAL) when first needed.
// It is never closed: the module, and every address taken from it, stays valid for the
// life of the process, also after this object is destroyed. Nothing here throws except
// std::bad_alloc from the strings. One thread at a time per object.
class ZRDynamicLoadedLibrary {
 public:
  // Keeps the name, passed to dlopen as it is (a name without '/' is searched for by the
  // loader's rules), and flags, which no operation reads. Loads nothing.
  ZRDynamicLoadedLibrary(const std::string & name, int flags);
  ~ZRDynamicLoadedLibrary() = default;
  ZRDynamicLoadedLibrary(const ZRDynamicLoadedLibrary &) = default;
  ZRDynamicLoadedLibrary & operator=(const ZRDynamicLoadedLibrary &) = default;

  // Loads the library unless it is loaded. 0 on success (and at once when loaded);
  // -1 when dlopen fails, the error text then holding dlerror's message. The error text
  // is emptied first.
  int LoadLibraryNow();
  // The address of the exported symbol name, loading the library first. Null when the
  // load fails or the symbol is not found (or its address is null), the error text then
  // saying why; it is emptied first, so after a success it is empty.
  void * GetSymbolAddress(const std::string & name);
  // The error text of the last operation: empty after a success, never empty after a
  // failure.
  std::string GetErrorString() const { return fsError; }

  // path with ".so" appended, unless its last 3 characters read ".so" in a comparison
  // without regard to case (strcasecmp); a path of 3 characters or fewer always gets it.
  // So "a" gives "a.so", "a.SO" stays, and "libm.so.6" gives "libm.so.6.so".
  static std::string ZRDecorateDynamicPathName(const std::string & path);

 private:
  void * fModule;
  [[maybe_unused]] int fnFlags;
  std::string fsName;
  std::string fsError;
};

}  // namespace ZRCommon_920

#endif  // ZRCOMMON920R_COMMON_DYNLIB_H
