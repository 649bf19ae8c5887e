// Streams for the stream-form tests: the bytes a stream holds, a stream over
// given bytes, and one that takes only so many bytes.
#pragma once

#include <cstdint>
#include <vector>

#include <kestrel/frame/host/TStream.h>

namespace kestrel::test {

using Bytes = std::vector<uint8_t>;

inline Bytes StreamBytes(TMemoryStream &stream) {
  const auto *data = static_cast<const uint8_t *>(stream.Memory());
  return Bytes(data, data + stream.Size());
}

// A memory stream holding bytes, positioned at its start.
class BytesStream : public TMemoryStream {
public:
  explicit BytesStream(const Bytes &bytes) {
    if (!bytes.empty()) WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
    SetPosition(0);
  }
};

// Takes the first `room` bytes written and no more.
class FullStream : public TMemoryStream {
public:
  explicit FullStream(int32_t room) : room_(room) {}
  int32_t Write(const void *buffer, int32_t count) override {
    const int32_t taken = count < room_ ? count : room_;
    room_ -= taken;
    return TMemoryStream::Write(buffer, taken);
  }

private:
  int32_t room_;
};

} // namespace kestrel::test
