// Property streaming of the host: a filer walks the properties that an object
// defines (DefineProperties) and a reader or writer moves their values over a
// stream.
//
// Binary form (all integers little-endian):
//   properties := { name value } 00       the 00 byte is an empty name
//   name       := length byte, then that many bytes (the property's name)
//   value      := 01 { value } 00         a list; EndOfList sees the 00
//              |  12 count:uint32 units   a wide string: count UTF-16 units
// Objects are not streamed. A reader refuses an unknown tag, an unknown
// property, and a count larger than the bytes left in the stream.
#pragma once

#include <cstdint>
#include <string>

#include <kestrel/frame/host/TObject.h>
#include <kestrel/frame/host/TStream.h>
#include <kestrel/frame/host/Types.h>

namespace kestrel {

class TReader;
class TWriter;

// Value tags of the binary form.
enum class TValueType : uint8_t { vaNull = 0, vaList = 1, vaWString = 0x12 };

using TReaderProc = OfObject<void(TReader *)>;
using TWriterProc = OfObject<void(TWriter *)>;

// The common part of readers and writers: the stream (not owned) and the
// property callback.
class TFiler : public TObject {
public:
  explicit TFiler(TStream *stream) : FStream(stream) {}

  // Called by an object's DefineProperties for each property it streams
  // itself. A writer writes the property when HasData is set; a reader reads
  // it when its name is the one met in the stream.
  virtual void DefineProperty(const std::string &Name, TReaderProc ReadData, TWriterProc WriteData,
                              bool HasData) = 0;

  // The object that the streamed one descends from, or null: a property equal
  // to the ancestor's need not be written.
  TPersistent *Ancestor = nullptr;
  TStream *Stream() const { return FStream; }

protected:
  TStream *FStream;
};

// Reads properties in the binary form; raises EReadError on a tag, property
// or count it refuses and at the stream's end.
class TReader : public TFiler {
public:
  using TFiler::TFiler;
  void DefineProperty(const std::string &Name, TReaderProc ReadData, TWriterProc WriteData,
                      bool HasData) override;

  // Reads the properties of Instance up to the closing empty name.
  void ReadProperties(TPersistent *Instance);

  void ReadListBegin();
  bool EndOfList();
  void ReadListEnd();
  std::u16string ReadWideString();

private:
  TValueType ReadValue();
  TValueType NextValue();
  void CheckValue(TValueType expected);
  std::string FPropName;
  bool FHandled = false;
};

// Writes properties in the binary form; raises EWriteError when the stream
// takes less than it is given or a name or text is too long for the form.
class TWriter : public TFiler {
public:
  using TFiler::TFiler;
  void DefineProperty(const std::string &Name, TReaderProc ReadData, TWriterProc WriteData,
                      bool HasData) override;

  // Writes the properties that Instance defines, then the closing empty name.
  void WriteProperties(TPersistent *Instance);

  void WriteListBegin();
  void WriteListEnd();
  void WriteWideString(const std::u16string &Value);

private:
  void WriteValue(TValueType value);
};

} // namespace kestrel
