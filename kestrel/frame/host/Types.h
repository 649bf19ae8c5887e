// Basic types shared by the whole library: fixed-width names, stored short
// strings, bit sets over enumerations and object-bound callbacks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace kestrel {

using UCS4 = uint32_t;
using TDateTime = double; // days since 1899-12-30, fraction = time of day
using HMODULE = void *;
using HWND = void *;
using THandle = intptr_t;

// A stored short string: one length byte, then N bytes. Text longer than N is
// cut without notice, as the stored forms expect.
template <size_t N> struct ShortString {
  static_assert(N >= 1 && N <= 255, "a short string holds 1 to 255 bytes");
  uint8_t len = 0;
  char data[N] = {};

  ShortString() = default;
  ShortString(std::string_view s) { assign(s); } // NOLINT: implicit like the host's
  ShortString &operator=(std::string_view s) {
    assign(s);
    return *this;
  }
  void assign(std::string_view s) {
    len = static_cast<uint8_t>(std::min(s.size(), N));
    std::memcpy(data, s.data(), len);
    std::memset(data + len, 0, N - len);
  }
  static constexpr size_t capacity() { return N; }
  size_t length() const { return std::min<size_t>(len, N); }
  bool empty() const { return len == 0; }
  std::string_view view() const { return {data, length()}; }
  std::string str() const { return std::string(view()); }
  bool operator==(const ShortString &o) const { return view() == o.view(); }
  bool operator==(std::string_view s) const { return view() == s; }
};
static_assert(sizeof(ShortString<255>) == 256);
static_assert(sizeof(ShortString<10>) == 11);

// A set over an enumeration, stored as the host stores sets: bit n of the
// little-endian byte array stands for ordinal n.
template <typename E, size_t Bytes> class TSet {
public:
  constexpr TSet() = default;
  constexpr TSet(std::initializer_list<E> items) {
    for (E e : items)
      Include(e);
  }
  static constexpr size_t kBits = Bytes * 8;
  constexpr void Include(E e) {
    auto n = ordinal(e);
    if (n < kBits)
      bits_[n / 8] |= static_cast<uint8_t>(1u << (n % 8));
  }
  constexpr void Exclude(E e) {
    auto n = ordinal(e);
    if (n < kBits)
      bits_[n / 8] &= static_cast<uint8_t>(~(1u << (n % 8)));
  }
  constexpr bool Contains(E e) const {
    auto n = ordinal(e);
    return n < kBits && (bits_[n / 8] >> (n % 8)) & 1u;
  }
  constexpr bool Empty() const {
    for (uint8_t b : bits_)
      if (b)
        return false;
    return true;
  }
  constexpr TSet operator+(const TSet &o) const { return combine(o, [](int a, int b) { return a | b; }); }
  constexpr TSet operator-(const TSet &o) const { return combine(o, [](int a, int b) { return a & ~b; }); }
  constexpr TSet operator*(const TSet &o) const { return combine(o, [](int a, int b) { return a & b; }); }
  constexpr bool operator==(const TSet &o) const {
    for (size_t i = 0; i < Bytes; ++i)
      if (bits_[i] != o.bits_[i])
        return false;
    return true;
  }
  // The stored form, for sets of up to 64 bits.
  constexpr uint64_t Raw() const {
    uint64_t v = 0;
    for (size_t i = 0; i < Bytes && i < 8; ++i)
      v |= uint64_t(bits_[i]) << (8 * i);
    return v;
  }
  static constexpr TSet FromRaw(uint64_t v) {
    TSet s;
    for (size_t i = 0; i < Bytes && i < 8; ++i)
      s.bits_[i] = static_cast<uint8_t>(v >> (8 * i));
    return s;
  }

private:
  static constexpr size_t ordinal(E e) { return static_cast<size_t>(e); }
  template <typename Op> constexpr TSet combine(const TSet &o, Op op) const {
    TSet r;
    for (size_t i = 0; i < Bytes; ++i)
      r.bits_[i] = static_cast<uint8_t>(op(bits_[i], o.bits_[i]));
    return r;
  }
  uint8_t bits_[Bytes] = {};
};

// An object-bound callback: a code pointer and the object it is called on.
// It is null when the code pointer is null.
template <typename Sig> class OfObject;
template <typename R, typename... A> class OfObject<R(A...)> {
public:
  using CodePtr = R (*)(void *, A...);
  constexpr OfObject() = default;
  constexpr OfObject(std::nullptr_t) {}
  constexpr OfObject(CodePtr code, void *data) : Code(code), Data(data) {}

  // Binds a member function: OfObject<void()>::Bind<&Job::Yield>(&job).
  template <auto Member, typename C> static OfObject Bind(C *obj) {
    return {[](void *d, A... a) -> R { return (static_cast<C *>(d)->*Member)(a...); }, obj};
  }
  // Binds any callable that outlives the callback (a lambda in a test).
  template <typename F> static OfObject Of(F *callable) {
    return {[](void *d, A... a) -> R { return (*static_cast<F *>(d))(a...); }, callable};
  }

  explicit operator bool() const { return Code != nullptr; }
  bool operator==(std::nullptr_t) const { return Code == nullptr; }
  R operator()(A... a) const { return Code(Data, a...); }

  CodePtr Code = nullptr;
  void *Data = nullptr;
};

} // namespace kestrel
