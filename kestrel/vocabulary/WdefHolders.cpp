// Unit Wdef: the holders that own or copy something.
#include <kestrel/vocabulary/WdefHolders.h>

#include <algorithm>
#include <cstring>

#include <kestrel/frame/host/AnsiStrings.h>

namespace kestrel {

TPCharOwningHolder::~TPCharOwningHolder() {
  StrDispose(pc);
}

TArrayOfDoubleLongintHolder::TArrayOfDoubleLongintHolder(const double_longint_rec *array)
    : values{} {
  if (array) std::copy_n(array, kDoubleLongintArrayLength, values);
}

TFileDetailsHolder::TFileDetailsHolder(const FileDetails_rec &rec)
    : detail1(rec.detail1), detail2(rec.detail2), detail3(rec.detail3), file_name(nullptr) {
  if (rec.file_name) {
    const size_t size = std::strlen(rec.file_name) + 1;
    file_name = StrAlloc(size);
    std::memcpy(file_name, rec.file_name, size);
  }
}

TFileDetailsHolder::~TFileDetailsHolder() {
  StrDispose(file_name);
}

} // namespace kestrel
