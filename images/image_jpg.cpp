#include "images/image_jpg.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <jerror.h>
#include <jpeglib.h>

namespace quarvel {
namespace {

constexpr int quality = 92;
/// A file of many scans over a large picture costs seconds for each kilobyte; real ones have about ten.
constexpr int maxScans = 100;
/// The shortest code of a block of 64 pixels is a bit.
constexpr std::uint64_t maxPixelsPerByte = 64 * 8;
constexpr long maxMemory = 512L * 1024 * 1024;

struct ErrorHandler {
  jpeg_error_mgr Manager; ///< first, so that libjpeg's pointer to it leads here
  std::jmp_buf Jump;
  char Text[JMSG_LENGTH_MAX] = "";
};

[[noreturn]] void Leave(j_common_ptr info) {
  auto* handler = reinterpret_cast<ErrorHandler*>(info->err);
  handler->Manager.format_message(info, handler->Text);
  std::longjmp(handler->Jump, 1);
}

/// Warnings that mean lost pixels end the reading; others are let pass.
void OnMessage(j_common_ptr info, int level) {
  const int code = info->err->msg_code;
  if (level < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER || code == JWRN_HUFF_BAD_CODE)) Leave(info);
}

void OnProgress(j_common_ptr info) {
  auto* decompress = reinterpret_cast<j_decompress_ptr>(info);
  if (decompress->input_scan_number <= maxScans) return;
  auto* handler = reinterpret_cast<ErrorHandler*>(info->err);
  std::snprintf(handler->Text, sizeof handler->Text, "too many scans");
  std::longjmp(handler->Jump, 1);
}

void SetUp(ErrorHandler& handler) {
  jpeg_std_error(&handler.Manager);
  handler.Manager.error_exit = Leave;
  handler.Manager.emit_message = OnMessage;
}

struct Reader {
  Reader() {
    SetUp(Error);
    Info.err = &Error.Manager;
    jpeg_create_decompress(&Info);
    Progress.progress_monitor = OnProgress;
    Info.progress = &Progress;
    Info.mem->max_memory_to_use = maxMemory;
  }
  ~Reader() { jpeg_destroy_decompress(&Info); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  jpeg_decompress_struct Info{};
  jpeg_progress_mgr Progress{};
  ErrorHandler Error;
};

/// libjpeg reports errors by a jump, so nothing in these functions owns memory.
bool Begin(Reader& reader, Bytes file) {
  if (setjmp(reader.Error.Jump)) return false;
  jpeg_mem_src(&reader.Info, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&reader.Info, TRUE);
  reader.Info.out_color_space = JCS_EXT_RGBA;
  return true;
}

bool ReadRows(Reader& reader, Image& image) {
  if (setjmp(reader.Error.Jump)) return false;
  jpeg_start_decompress(&reader.Info);
  while (reader.Info.output_scanline < reader.Info.output_height) {
    JSAMPROW row = image.Values.data() + PixelOffset(image, 0, static_cast<int>(reader.Info.output_scanline));
    jpeg_read_scanlines(&reader.Info, &row, 1);
  }
  jpeg_finish_decompress(&reader.Info);
  return true;
}

struct WriteHandle {
  WriteHandle() {
    SetUp(Error);
    Info.err = &Error.Manager;
    jpeg_create_compress(&Info);
  }
  ~WriteHandle() {
    jpeg_destroy_compress(&Info);
    std::free(Buffer);
  }
  WriteHandle(const WriteHandle&) = delete;
  WriteHandle& operator=(const WriteHandle&) = delete;

  jpeg_compress_struct Info{};
  ErrorHandler Error;
  unsigned char* Buffer = nullptr;
  unsigned long Size = 0;
};

bool WriteRows(WriteHandle& writer, const Image& image) {
  if (setjmp(writer.Error.Jump)) return false;
  jpeg_mem_dest(&writer.Info, &writer.Buffer, &writer.Size);
  writer.Info.image_width = static_cast<JDIMENSION>(image.Width);
  writer.Info.image_height = static_cast<JDIMENSION>(image.Height);
  writer.Info.input_components = 4;
  writer.Info.in_color_space = JCS_EXT_RGBA;
  jpeg_set_defaults(&writer.Info);
  jpeg_set_quality(&writer.Info, quality, TRUE);
  jpeg_start_compress(&writer.Info, TRUE);
  while (writer.Info.next_scanline < writer.Info.image_height) {
    // libjpeg only reads from the row, but its type does not say so.
    JSAMPROW row =
        const_cast<JSAMPROW>(image.Values.data()) + PixelOffset(image, 0, static_cast<int>(writer.Info.next_scanline));
    jpeg_write_scanlines(&writer.Info, &row, 1);
  }
  jpeg_finish_compress(&writer.Info);
  return true;
}

} // namespace

ImageResult ReadJpg(Bytes file) {
  Reader reader;
  const auto failure = [&] { return ImageError("the jpg cannot be read: " + std::string(reader.Error.Text)); };
  if (!Begin(reader, file)) return failure();
  const auto width = static_cast<int>(reader.Info.image_width);
  const auto height = static_cast<int>(reader.Info.image_height);
  if (!MayReadPixels(width, height)) return ImageError("the image is too large");
  if (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) > file.size() * maxPixelsPerByte)
    return ImageError("the jpg data is truncated");
  Image image = MakeImage(width, height, PixelFormat::Rgba8);
  if (!ReadRows(reader, image)) return failure();
  return {std::move(image), {}};
}

std::vector<std::uint8_t> WriteJpg(const Image& image) {
  WriteHandle writer;
  if (!WriteRows(writer, image)) return {};
  return {writer.Buffer, writer.Buffer + writer.Size};
}

} // namespace quarvel
