// Unit myFileStreamU: its start-up and finalisation do no work.
#include <kestrel/files/myFileStreamU.h>

#include <algorithm>
#include <climits>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/FindFile.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/frame/platform/TempPath.h>
#include <kestrel/unicode/WideCStrings.h>

namespace kestrel {

namespace {

// The count before a field; a count cut off by the end reads as 0, a negative
// one counts as 0.
int32_t ReadCount(TStream *Stream) {
  uint8_t b[4] = {};
  if (Stream->Read(b, 4) != 4) return 0;
  int32_t n = static_cast<int32_t>(uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 |
                                   uint32_t(b[3]) << 24);
  return n < 0 ? 0 : n;
}

void WriteCount(TStream *Stream, size_t n) {
  if (n > static_cast<size_t>(INT32_MAX)) throw EWriteError(Consts::SWriteError);
  uint32_t v = static_cast<uint32_t>(n);
  uint8_t b[4] = {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
  Stream->Write(b, 4);
}

// How many of count items of the given width the stream can still deliver.
int32_t Deliverable(TStream *Stream, int32_t count, int32_t width) {
  int64_t left = Stream->Remaining() / width;
  return static_cast<int32_t>(std::min<int64_t>(count, left));
}

// Reads up to n bytes into a fresh string: only what the stream gives.
std::string ReadBytes(TStream *Stream, int32_t n) {
  std::string s(static_cast<size_t>(Deliverable(Stream, n, 1)), '\0');
  if (!s.empty())
    s.resize(
        static_cast<size_t>(std::max(Stream->Read(s.data(), static_cast<int32_t>(s.size())), 0)));
  return s;
}

std::u16string ReadUnits(TStream *Stream, int32_t n) {
  int32_t units = Deliverable(Stream, n, 2);
  std::string bytes(static_cast<size_t>(units) * 2, '\0');
  int32_t got = bytes.empty() ? 0 : Stream->Read(bytes.data(), static_cast<int32_t>(bytes.size()));
  std::u16string w(static_cast<size_t>(std::max(got, 0) / 2), u'\0');
  for (size_t i = 0; i < w.size(); ++i)
    w[i] = static_cast<char16_t>(uint8_t(bytes[2 * i]) | uint8_t(bytes[2 * i + 1]) << 8);
  return w;
}

void WriteUnits(TStream *Stream, const char16_t *w, size_t n) {
  WriteCount(Stream, n);
  if (n == 0) return;
  std::string bytes(n * 2, '\0');
  for (size_t i = 0; i < n; ++i) {
    bytes[2 * i] = static_cast<char>(w[i] & 0xFF);
    bytes[2 * i + 1] = static_cast<char>(w[i] >> 8);
  }
  Stream->Write(bytes.data(), static_cast<int32_t>(bytes.size()));
}

} // namespace

void *ReadUnknownLengthPointer(TStream *Stream, bool wide) {
  int32_t n = ReadCount(Stream);
  if (n <= 0) return nullptr;
  if (wide) {
    std::u16string w = ReadUnits(Stream, n);
    char16_t *p = StrAllocW(static_cast<uint32_t>(w.size() + 1)); // zeroed: terminated
    std::copy(w.begin(), w.end(), p);
    return p;
  }
  std::string s = ReadBytes(Stream, n);
  char *p = StrAlloc(s.size() + 1);
  std::copy(s.begin(), s.end(), p);
  p[s.size()] = '\0';
  return p;
}

bool WriteUnknownLengthPointer(TStream *Stream, const void *P, bool wide) {
  if (!P) {
    WriteCount(Stream, 0);
    return false;
  }
  if (wide) {
    auto *w = static_cast<const char16_t *>(P);
    WriteUnits(Stream, w, StrLenW(w));
  } else {
    auto *s = static_cast<const char *>(P);
    size_t n = StrLen(s);
    WriteCount(Stream, n);
    if (n) Stream->Write(s, static_cast<int32_t>(n));
  }
  return true;
}

std::string ReadUnknownLengthString(TStream *Stream) {
  int32_t n = ReadCount(Stream);
  return n > 0 ? ReadBytes(Stream, n) : std::string();
}

bool WriteUnknownLengthString(TStream *Stream, const std::string &S) {
  WriteCount(Stream, S.size());
  if (!S.empty()) Stream->Write(S.data(), static_cast<int32_t>(S.size()));
  return true;
}

std::string ReadShortString(TStream *Stream) {
  uint8_t n = 0;
  if (Stream->Read(&n, 1) != 1) return {};
  return ReadBytes(Stream, n);
}

bool WriteShortString(TStream *Stream, const std::string &S) {
  uint8_t n = static_cast<uint8_t>(S.size() & 0xFF); // longer text is the caller's fault
  Stream->Write(&n, 1);
  if (n) Stream->Write(S.data(), n);
  return true;
}

std::u16string ReadWideString(TStream *Stream) {
  int32_t n = ReadCount(Stream);
  return n > 0 ? ReadUnits(Stream, n) : std::u16string();
}

bool WriteWideString(TStream *Stream, const std::u16string &W) {
  WriteUnits(Stream, W.data(), W.size());
  return true;
}

void TDummy::OverwriteHandler(TObject *, bool &OverwriteIt, const std::string &FileName) {
  std::string text = IncludeTrailingPathDelimiter(TempFolder) + FileName + "\r" + "exists..." +
                     "\r" + "Overwrite?";
  OverwriteIt = Kpsmall::PMsgDlg(text, "File Exists", 1) == 1;
}

std::string OpenedAZipFileToTempDir(const std::string &Name, int32_t MemberNumber) {
  std::string lower = AnsiLowerCase(Name);
  size_t at = lower.find(".zip");
  if (at == std::string::npos) return {};
  std::string archive = lower.substr(0, at + 4);
  // Lower-casing keeps the byte length, so the same cut of Name is the
  // archive in its own capitals, for file systems that tell case apart.
  if (!FileExists(archive) && FileExists(Name.substr(0, at + 4))) archive = Name.substr(0, at + 4);
  try {
    TDummy zip;
    zip.SetZipName(archive);
    zip.ReadZip();
    zip.OnPromptForOverwrite = TUZOverwriteEvent::Bind<&TDummy::OverwriteHandler>(&zip);
    if (MemberNumber > zip.GetCount() || MemberNumber < 1) return {};
    zip.ClearSelected();
    zip.RecreateDirs = false; // the member lands directly in the temporary folder
    zip.SetSelected(MemberNumber - 1, true);
    uint32_t n = GetTempPathA(260, zip.TempFolder);
    if (n == 0 || n >= 260) // no folder, or one too long for the buffer
      return {};
    zip.SetDestDir(zip.TempFolder);
    if (zip.UnZipSelected() <= 0) return {};
    return ExpandFileName(IncludeTrailingPathDelimiter(zip.TempFolder)) +
           zip.GetFilename(MemberNumber - 1);
  } catch (...) { // a file that is no archive, a damaged member ...: no result
    return {};
  }
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(myFileStreamU, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
