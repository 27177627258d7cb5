// Dynamic loading through dlopen, dlsym and dlerror.
#include "zrcommon920r/common/dynlib.h"

#include <dlfcn.h>
#include <strings.h>

namespace ZRCommon_920 {

namespace {

// dlerror's text, or fallback when it has none, so that a failure never reads as empty.
std::string LoaderError(const std::string & fallback) {
  const char * text = dlerror();
  return text != nullptr && *text != '\0' ? std::string(text) : fallback;
}

constexpr char kSuffix[] = ".so";
constexpr std::size_t kSuffixLength = sizeof kSuffix - 1;

}  // namespace

ZRDynamicLoadedLibrary::ZRDynamicLoadedLibrary(const std::string & name, int flags)
    : fModule(nullptr), fnFlags(flags), fsName(name) {}

int ZRDynamicLoadedLibrary::LoadLibraryNow() {
  fsError.clear();
  if (fModule != nullptr) return 0;
  dlerror();  // drop a message left by an earlier call of anyone's
  fModule = dlopen(fsName.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (fModule != nullptr) return 0;
  fsError = LoaderError("cannot load shared library " + fsName);
  return -1;
}

void * ZRDynamicLoadedLibrary::GetSymbolAddress(const std::string & name) {
  fsError.clear();
  if (LoadLibraryNow() != 0) return nullptr;
  dlerror();
  void * address = dlsym(fModule, name.c_str());
  if (address == nullptr) fsError = LoaderError("symbol " + name + " has no address");
  return address;
}

std::string ZRDynamicLoadedLibrary::ZRDecorateDynamicPathName(const std::string & path) {
  if (path.size() > kSuffixLength &&
      strcasecmp(path.c_str() + path.size() - kSuffixLength, kSuffix) == 0)
    return path;
  return path + kSuffix;
}

}  // namespace ZRCommon_920
