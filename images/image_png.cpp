#include "images/image_png.h"

#include "images/image_headers.h"

#include <csetjmp>
#include <cstring>
#include <png.h>

namespace quarvel {
namespace {

/// What libpng is handed as its error pointer: the text of the last error.
struct ErrorText {
  char Text[200] = "";
};

[[noreturn]] void OnError(png_structp png, png_const_charp message) {
  auto* error = static_cast<ErrorText*>(png_get_error_ptr(png));
  std::strncpy(error->Text, message, sizeof error->Text - 1);
  png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

struct Source {
  Bytes Data;
  std::size_t At = 0;
};

void OnRead(png_structp png, png_bytep into, std::size_t count) {
  auto* source = static_cast<Source*>(png_get_io_ptr(png));
  if (count > source->Data.size() - source->At) png_error(png, "the data is truncated");
  std::memcpy(into, source->Data.data() + source->At, count);
  source->At += count;
}

struct Reader {
  Reader() : Png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &Error, OnError, OnWarning)) {
    if (Png) Info = png_create_info_struct(Png);
  }
  ~Reader() { png_destroy_read_struct(&Png, &Info, nullptr); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  ErrorText Error;
  png_structp Png = nullptr;
  png_infop Info = nullptr;
};

void AskForRgba(const Reader& reader) {
  png_set_expand(reader.Png);
  png_set_scale_16(reader.Png);
  png_set_gray_to_rgb(reader.Png);
  png_set_add_alpha(reader.Png, 0xFF, PNG_FILLER_AFTER);
}

/// Reads the header and sets the conversions. libpng reports errors by a jump, so nothing here owns memory.
bool Begin(Reader& reader, Source& source, bool samples) {
  if (setjmp(png_jmpbuf(reader.Png))) return false;
  png_set_user_limits(reader.Png, MaxPixelSide, MaxPixelSide);
  png_set_read_fn(reader.Png, &source, OnRead);
  png_read_info(reader.Png, reader.Info);
  if (!samples) AskForRgba(reader);
  return true;
}

/// `bytes` holds the whole picture, which interlaced files fill in several passes.
bool ReadRows(Reader& reader, std::uint8_t* bytes, std::size_t rowBytes, int height) {
  if (setjmp(png_jmpbuf(reader.Png))) return false;
  const int passes = png_set_interlace_handling(reader.Png);
  png_read_update_info(reader.Png, reader.Info);
  if (png_get_rowbytes(reader.Png, reader.Info) != rowBytes) return false;
  for (int pass = 0; pass < passes; ++pass)
    for (int y = 0; y < height; ++y)
      png_read_row(reader.Png, bytes + static_cast<std::size_t>(y) * rowBytes, nullptr);
  return true;
}

ImageResult Failure(const Reader& reader) {
  return ImageError("the png cannot be read: " + std::string(reader.Error.Text));
}

ImageResult ReadAs(Bytes file, bool heightmap) {
  const auto header = ReadPngHeader(ByteView(file), file.size());
  if (!header) return ImageError("the png header cannot be read");
  if (!MayReadPixels(header->Size.Width, header->Size.Height)) return ImageError("the image is too large");
  const bool samples = heightmap && header->BitDepth == 16 && header->ColorType == PNG_COLOR_TYPE_GRAY;
  Reader reader;
  Source source{file};
  if (!reader.Info || !Begin(reader, source, samples)) return Failure(reader);
  Image image = MakeImage(header->Size.Width, header->Size.Height, samples ? PixelFormat::Grey16 : PixelFormat::Rgba8);
  if (!samples) {
    const std::size_t rowBytes = static_cast<std::size_t>(image.Width) * 4;
    if (!ReadRows(reader, image.Values.data(), rowBytes, image.Height)) return Failure(reader);
    return {std::move(image), {}};
  }
  std::vector<std::uint8_t> bytes(image.Samples.size() * 2);
  if (!ReadRows(reader, bytes.data(), static_cast<std::size_t>(image.Width) * 2, image.Height)) return Failure(reader);
  const ByteView view(bytes);
  for (std::size_t i = 0; i < image.Samples.size(); ++i)
    image.Samples[i] = static_cast<std::uint16_t>(view.BigU16(i * 2));
  return {std::move(image), {}};
}

void OnWrite(png_structp png, png_bytep bytes, std::size_t count) {
  auto* out = static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), bytes, bytes + count);
}

void OnFlush(png_structp) {}

struct WriteHandle {
  WriteHandle() : Png(png_create_write_struct(PNG_LIBPNG_VER_STRING, &Error, OnError, OnWarning)) {
    if (Png) Info = png_create_info_struct(Png);
  }
  ~WriteHandle() { png_destroy_write_struct(&Png, &Info); }
  WriteHandle(const WriteHandle&) = delete;
  WriteHandle& operator=(const WriteHandle&) = delete;

  ErrorText Error;
  png_structp Png = nullptr;
  png_infop Info = nullptr;
};

bool WriteRows(WriteHandle& writer, const Image& image, bool alpha, std::vector<std::uint8_t>& out) {
  if (setjmp(png_jmpbuf(writer.Png))) return false;
  png_set_write_fn(writer.Png, &out, OnWrite, OnFlush);
  png_set_IHDR(writer.Png, writer.Info, static_cast<png_uint_32>(image.Width), static_cast<png_uint_32>(image.Height),
               8, alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(writer.Png, writer.Info);
  if (!alpha) png_set_filler(writer.Png, 0, PNG_FILLER_AFTER); // the fourth byte is left out
  for (int y = 0; y < image.Height; ++y)
    png_write_row(writer.Png, image.Values.data() + PixelOffset(image, 0, y));
  png_write_end(writer.Png, nullptr);
  return true;
}

} // namespace

ImageResult ReadPng(Bytes file) { return ReadAs(file, false); }

ImageResult ReadHeightmapPng(Bytes file) { return ReadAs(file, true); }

std::vector<std::uint8_t> WritePng(const Image& image) {
  std::vector<std::uint8_t> out;
  WriteHandle writer;
  if (!writer.Info || !WriteRows(writer, image, HasTransparentPixel(image), out)) out.clear();
  return out;
}

} // namespace quarvel
