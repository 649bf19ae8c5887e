// Opening what is not a file: a FIFO or a socket is refused at once, with
// the file named and what it is, instead of a read that waits for a writer.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <future>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <kestrel/frame/host/Host.h>

#include "support/TestSupport.h"

using namespace kestrel;
using kestrel::test::TempDir;

namespace {

// The open's message, or "opened"; fails the test instead of hanging when
// the open blocks (a writer is then opened to let it go).
std::string OpenMessage(const std::string &path, uint16_t mode) {
  auto open = std::async(std::launch::async, [&] {
    try {
      TFileStream stream(path, mode);
      return std::string("opened");
    } catch (const EFOpenError &e) {
      return e.Message();
    }
  });
  if (open.wait_for(std::chrono::seconds(5)) == std::future_status::timeout) {
    int fd = ::open(path.c_str(), O_WRONLY | O_NONBLOCK);
    if (fd < 0) fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
    open.wait();
    if (fd >= 0) ::close(fd);
    ADD_FAILURE() << "the open of " << path << " blocked";
    return "blocked";
  }
  return open.get();
}

bool Has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

} // namespace

TEST(NonRegularFiles, AFifoIsRefusedWithoutWaitingForAWriter) {
  TempDir t;
  const std::string fifo = t / "pipe";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0644), 0);
  for (uint16_t mode : {uint16_t(fmOpenRead | fmShareDenyNone), uint16_t(fmOpenReadWrite)}) {
    const std::string message = OpenMessage(fifo, mode);
    EXPECT_TRUE(Has(message, fifo)) << message;
    EXPECT_TRUE(Has(message, "FIFO")) << message;
  }
  EXPECT_EQ(FileOpen(fifo, fmOpenRead), INVALID_HANDLE_VALUE);
  EXPECT_EQ(GetLastOSError(), ENXIO);
}

TEST(NonRegularFiles, ASocketIsRefusedAndADeviceOpens) {
  TempDir t;
  const std::string sock = t / "s.sock";
  int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  ASSERT_LT(sock.size(), sizeof addr.sun_path);
  std::strcpy(addr.sun_path, sock.c_str());
  ASSERT_EQ(::bind(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr), 0);
  EXPECT_TRUE(Has(OpenMessage(sock, fmOpenRead), "socket"));
  ::close(fd);

  // A device stays open to a caller who names it, and reads as it blocks
  // (here: not at all), not in the non-blocking way the open used.
  TFileStream null("/dev/null", fmOpenReadWrite);
  char c;
  EXPECT_EQ(null.Read(&c, 1), 0);
  EXPECT_EQ(::fcntl(static_cast<int>(null.Handle()), F_GETFL) & O_NONBLOCK, 0);
}
