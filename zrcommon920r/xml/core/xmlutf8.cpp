// Narrow text to UTF-8: text in the codeset of the thread's LC_CTYPE locale, read by hand
// for ISO-8859-1 (and ASCII, which is read so that no byte is lost) and UTF-8, and through
// an iconv descriptor, kept per thread and codeset, for every other codeset.
#include "zrcommon920r/xml/core/detail/xmlutf8.h"

#include <iconv.h>
#include <langinfo.h>

#include <strings.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <vector>

namespace ZRXML_920 {
namespace detail {

namespace {

// U+FFFD REPLACEMENT CHARACTER, which stands for each byte the codeset rejects.
constexpr char kReplacement[] = "\xEF\xBF\xBD";
constexpr std::size_t kReplacementSize = 3;
// Descriptors kept per thread; a thread switching among more codesets reopens them.
constexpr std::size_t kKeptCodesets = 8;

const iconv_t kNoDescriptor = reinterpret_cast<iconv_t>(-1);

enum class Reading { kLatin1, kUtf8, kIconv };

struct Codeset {
  std::string name;
  Reading reading;
  iconv_t descriptor;
};

// The codesets a thread has met, with their descriptors, closed when the thread ends.
class CodesetCache {
 public:
  CodesetCache() = default;
  CodesetCache(const CodesetCache &) = delete;
  CodesetCache & operator=(const CodesetCache &) = delete;
  ~CodesetCache() {
    for (const Codeset & codeset : fvCodesets) Close(codeset);
  }

  const Codeset & Find(const char * name) {
    for (const Codeset & codeset : fvCodesets) {
      if (codeset.name == name) return codeset;
    }
    if (fvCodesets.size() == kKeptCodesets) {
      Close(fvCodesets.front());
      fvCodesets.erase(fvCodesets.begin());
    }
    fvCodesets.push_back(Open(name));
    return fvCodesets.back();
  }

 private:
  static bool IsAnyOf(const char * name, std::initializer_list<const char *> names) {
    for (const char * candidate : names) {
      if (strcasecmp(name, candidate) == 0) return true;
    }
    return false;
  }

  static Codeset Open(const char * name) {
    // ASCII is the codeset of the "C" and "POSIX" locales; read as ISO-8859-1, every
    // byte keeps a character.
    if (IsAnyOf(name, {"ANSI_X3.4-1968", "ASCII", "US-ASCII", "ISO-8859-1", "ISO8859-1"})) {
      return {name, Reading::kLatin1, kNoDescriptor};
    }
    // Read by hand: iconv's UTF-8 reader passes sequences beyond U+10FFFF.
    if (IsAnyOf(name, {"UTF-8", "UTF8"})) return {name, Reading::kUtf8, kNoDescriptor};
    const iconv_t descriptor = iconv_open("UTF-8", name);
    if (descriptor == kNoDescriptor) return {name, Reading::kLatin1, kNoDescriptor};
    return {name, Reading::kIconv, descriptor};
  }

  static void Close(const Codeset & codeset) {
    if (codeset.descriptor != kNoDescriptor) iconv_close(codeset.descriptor);
  }

  std::vector<Codeset> fvCodesets;
};

void AppendLatin1(std::string & out, const unsigned char * p, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    if (p[i] < 0x80) {
      out += static_cast<char>(p[i]);
    } else {
      out += static_cast<char>(0xC0 | (p[i] >> 6));
      out += static_cast<char>(0x80 | (p[i] & 0x3F));
    }
  }
}

bool InRange(unsigned char c, unsigned lo, unsigned hi) {
  return c >= lo && c <= hi;
}

// Length of the well-formed UTF-8 sequence at p (Unicode 15, table 3-7: no overlong form,
// no surrogate, nothing past U+10FFFF), or 0 when its first byte is rejected.
std::size_t SequenceLength(const unsigned char * p, std::size_t left) {
  const unsigned char c = p[0];
  if (c < 0x80) return 1;
  std::size_t length;
  unsigned lo = 0x80;
  unsigned hi = 0xBF;
  if (InRange(c, 0xC2, 0xDF)) {
    length = 2;
  } else if (InRange(c, 0xE0, 0xEF)) {
    length = 3;
    if (c == 0xE0) lo = 0xA0;
    if (c == 0xED) hi = 0x9F;
  } else if (InRange(c, 0xF0, 0xF4)) {
    length = 4;
    if (c == 0xF0) lo = 0x90;
    if (c == 0xF4) hi = 0x8F;
  } else {
    return 0;
  }
  if (left < length || !InRange(p[1], lo, hi)) return 0;
  for (std::size_t k = 2; k < length; ++k) {
    if (!InRange(p[k], 0x80, 0xBF)) return 0;
  }
  return length;
}

void AppendUtf8Checked(std::string & out, const unsigned char * p, std::size_t n) {
  std::size_t done = 0;
  std::size_t i = 0;
  while (i < n) {
    const std::size_t length = SequenceLength(p + i, n - i);
    if (length > 0) {
      i += length;
      continue;
    }
    out.append(reinterpret_cast<const char *>(p + done), i - done);
    out.append(kReplacement, kReplacementSize);
    done = ++i;
  }
  out.append(reinterpret_cast<const char *>(p + done), n - done);
}

void AppendIconv(std::string & out, iconv_t descriptor, const char * text, std::size_t n) {
  iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
  std::size_t used = out.size();
  out.resize(used + n + n / 2 + 16);
  // iconv does not write through its input pointer; the interface merely lacks the const.
  char * in = const_cast<char *>(text);
  std::size_t inLeft = n;
  bool flushing = false;
  for (;;) {
    char * dst = &out[0] + used;
    std::size_t room = out.size() - used;
    const std::size_t result = flushing ? iconv(descriptor, nullptr, nullptr, &dst, &room)
                                        : iconv(descriptor, &in, &inLeft, &dst, &room);
    const int error = errno;
    used = out.size() - room;
    if (result != static_cast<std::size_t>(-1)) {
      if (flushing) break;
      flushing = true;  // all read; let a stateful codeset close its last character
      continue;
    }
    if (error == E2BIG || room < kReplacementSize) {
      out.resize(out.size() + out.size() / 2 + 16);
      continue;
    }
    if (flushing) break;
    // EILSEQ, or EINVAL for a sequence cut off by the end: the byte at in is rejected.
    std::memcpy(&out[0] + used, kReplacement, kReplacementSize);
    used += kReplacementSize;
    ++in;
    --inLeft;
    iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
  }
  out.resize(used);
}

}  // namespace

bool IsAscii(const char * text, std::size_t n) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080u;
  std::size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    std::uint64_t word;
    std::memcpy(&word, text + i, sizeof word);
    if ((word & kHighBits) != 0) return false;
  }
  for (; i < n; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0x80) != 0) return false;
  }
  return true;
}

void AppendUtf8(std::string & out, const char * text, std::size_t n) {
  if (IsAscii(text, n)) {
    out.append(text, n);
    return;
  }
  thread_local CodesetCache cache;
  const Codeset & codeset = cache.Find(nl_langinfo(CODESET));
  const unsigned char * bytes = reinterpret_cast<const unsigned char *>(text);
  switch (codeset.reading) {
    case Reading::kLatin1:
      AppendLatin1(out, bytes, n);
      break;
    case Reading::kUtf8:
      AppendUtf8Checked(out, bytes, n);
      break;
    case Reading::kIconv:
      AppendIconv(out, codeset.descriptor, text, n);
      break;
  }
}

}  // namespace detail
}  // namespace ZRXML_920
