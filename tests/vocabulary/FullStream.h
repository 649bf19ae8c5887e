// A stream that takes only so many bytes, as a full disk would.
#pragma once

#include <kestrel/frame/host/TStream.h>

namespace kestrel::test {

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
