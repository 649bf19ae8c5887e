#include <kestrel/frame/host/Filer.h>

#include <algorithm>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

namespace {

uint8_t ReadByte(TStream *s) {
  uint8_t b = 0;
  s->ReadBuffer(&b, 1);
  return b;
}

[[noreturn]] void BadValue() {
  throw EReadError(Consts::SInvalidPropertyValue);
}

} // namespace

// ---- TReader

void TReader::DefineProperty(const std::string &Name, TReaderProc ReadData, TWriterProc, bool) {
  if (FHandled || Name != FPropName || !ReadData) return;
  ReadData(this);
  FHandled = true;
}

void TReader::ReadProperties(TPersistent *Instance) {
  for (;;) {
    uint8_t len = ReadByte(FStream);
    if (len == 0) return;
    std::string name(len, '\0');
    FStream->ReadBuffer(name.data(), len);
    FPropName = name;
    FHandled = false;
    Instance->DefineProperties(this);
    FPropName.clear();
    if (!FHandled) throw EReadError(Format(Consts::SUnknownProperty, name.c_str()));
  }
}

TValueType TReader::ReadValue() {
  return static_cast<TValueType>(ReadByte(FStream));
}

TValueType TReader::NextValue() {
  TValueType v = ReadValue();
  FStream->Seek(int64_t(-1), TSeekOrigin::soCurrent);
  return v;
}

void TReader::CheckValue(TValueType expected) {
  if (ReadValue() != expected) BadValue();
}

void TReader::ReadListBegin() {
  CheckValue(TValueType::vaList);
}

bool TReader::EndOfList() {
  return NextValue() == TValueType::vaNull;
}

void TReader::ReadListEnd() {
  CheckValue(TValueType::vaNull);
}

std::u16string TReader::ReadWideString() {
  CheckValue(TValueType::vaWString);
  uint8_t raw[4];
  FStream->ReadBuffer(raw, 4);
  uint32_t count = raw[0] | raw[1] << 8 | raw[2] << 16 | uint32_t(raw[3]) << 24;
  // A hostile count must not make us allocate what the stream cannot hold.
  if (uint64_t(count) * 2 > uint64_t(FStream->Remaining())) throw EReadError(Consts::SReadError);
  std::u16string value(count, u'\0');
  std::string bytes;
  for (uint32_t done = 0; done < count;) {
    uint32_t chunk = std::min<uint32_t>(count - done, 1u << 20);
    bytes.resize(size_t(chunk) * 2);
    FStream->ReadBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
    for (uint32_t i = 0; i < chunk; ++i)
      value[done + i] =
          static_cast<char16_t>(uint8_t(bytes[2 * i]) | uint8_t(bytes[2 * i + 1]) << 8);
    done += chunk;
  }
  return value;
}

// ---- TWriter

void TWriter::DefineProperty(const std::string &Name, TReaderProc, TWriterProc WriteData,
                             bool HasData) {
  if (!HasData || !WriteData) return;
  if (Name.empty() || Name.size() > 255) throw EWriteError(Consts::SInvalidPropertyValue);
  uint8_t len = static_cast<uint8_t>(Name.size());
  FStream->WriteBuffer(&len, 1);
  FStream->WriteBuffer(Name.data(), len);
  WriteData(this);
}

void TWriter::WriteProperties(TPersistent *Instance) {
  Instance->DefineProperties(this);
  WriteValue(TValueType::vaNull);
}

void TWriter::WriteValue(TValueType value) {
  auto b = static_cast<uint8_t>(value);
  FStream->WriteBuffer(&b, 1);
}

void TWriter::WriteListBegin() {
  WriteValue(TValueType::vaList);
}

void TWriter::WriteListEnd() {
  WriteValue(TValueType::vaNull);
}

void TWriter::WriteWideString(const std::u16string &Value) {
  WriteValue(TValueType::vaWString);
  if (Value.size() > 0x3FFFFFFF) throw EWriteError(Consts::SWriteError);
  auto n = static_cast<uint32_t>(Value.size());
  uint8_t raw[4] = {uint8_t(n), uint8_t(n >> 8), uint8_t(n >> 16), uint8_t(n >> 24)};
  FStream->WriteBuffer(raw, 4);
  std::string bytes(Value.size() * 2, '\0');
  for (size_t i = 0; i < Value.size(); ++i) {
    bytes[2 * i] = static_cast<char>(Value[i] & 0xFF);
    bytes[2 * i + 1] = static_cast<char>(Value[i] >> 8);
  }
  FStream->WriteBuffer(bytes.data(), static_cast<int32_t>(bytes.size()));
}

} // namespace kestrel
