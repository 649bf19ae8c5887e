// The host's exception classes. Every error the library raises derives from
// Exception, whose Message is the text shown to the user.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace kestrel {

// The root of the library's errors; catch it (or std::exception) for all.
class Exception : public std::exception {
public:
  explicit Exception(std::string message) : FMessage(std::move(message)) {}
  const std::string &Message() const { return FMessage; }
  const char *what() const noexcept override { return FMessage.c_str(); }

protected:
  std::string FMessage;
};

#define KESTREL_DECLARE_EXCEPTION(Name, Base)                                                      \
  class Name : public Base {                                                                       \
  public:                                                                                          \
    using Base::Base;                                                                              \
  }

KESTREL_DECLARE_EXCEPTION(EListError, Exception);
KESTREL_DECLARE_EXCEPTION(EStringListError, Exception);
KESTREL_DECLARE_EXCEPTION(EStreamError, Exception);
KESTREL_DECLARE_EXCEPTION(EFileStreamError, EStreamError);
KESTREL_DECLARE_EXCEPTION(EFOpenError, EFileStreamError);
KESTREL_DECLARE_EXCEPTION(EFCreateError, EFileStreamError);
KESTREL_DECLARE_EXCEPTION(EReadError, EStreamError);
KESTREL_DECLARE_EXCEPTION(EWriteError, EStreamError);
KESTREL_DECLARE_EXCEPTION(EFilerError, EStreamError);
KESTREL_DECLARE_EXCEPTION(EResNotFound, Exception);
KESTREL_DECLARE_EXCEPTION(EConvertError, Exception);
KESTREL_DECLARE_EXCEPTION(EOutOfMemory, Exception);
KESTREL_DECLARE_EXCEPTION(EInOutError, Exception);
KESTREL_DECLARE_EXCEPTION(EMaskException, Exception);
KESTREL_DECLARE_EXCEPTION(EInvalidOperation, Exception);

// A failed operating-system call, with the system's error code.
class EOSError : public Exception {
public:
  EOSError(std::string message, int32_t errorCode)
      : Exception(std::move(message)), ErrorCode(errorCode) {}
  int32_t ErrorCode;
};

} // namespace kestrel
