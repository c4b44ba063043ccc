#pragma once
// Makes encoded pictures and archives for tests. Samples are written to the file unchanged, so the
// decoded pixels can be computed from them.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <png.h>
#include <zip.h>

struct PngPicture {
  int width = 1;
  int height = 1;
  int depth = 8;
  int colour_type = PNG_COLOR_TYPE_RGB;
  // Row after row, 16-bit samples with the high byte first, every row in whole bytes.
  std::string samples = {};
  std::vector<png_color> palette = {};
  std::vector<png_byte> palette_alpha = {};   // palette pictures: tRNS
  std::vector<png_color_16> transparent = {}; // others: tRNS, at most one colour
  bool interlaced = false;
  // The exponent that converted light to samples; 0: the file has no gAMA chunk.
  double gamma = 0;
};

std::string encode_png(const PngPicture &picture);
// The same file with width and height (big-endian words of the header) replaced and its checksum
// corrected.
std::string with_png_size(std::string file, unsigned width, unsigned height);

enum class JpegKind { rgb, grey, cmyk };
// Two codings write as little as the format allows. For a block that equals the one before,
// baseline_optimised writes two bits, and progressive_first_scan, which has only the mean of each
// block, writes one bit.
enum class JpegCoding {
  baseline,
  baseline_optimised,
  progressive,
  progressive_first_scan,
  arithmetic,
};
// Best quality, no subsampling; comment_length bytes of comments precede the picture.
std::string encode_jpeg(JpegKind kind, int width, int height, const std::string &samples,
                        JpegCoding coding = JpegCoding::baseline, int comment_length = 0);
// The same file with width and height in the header of its frame replaced.
std::string with_jpeg_size(std::string file, int width, int height);

// An archive in memory, open for reading.
struct CloseArchive {
  void operator()(zip_t *archive) const { zip_discard(archive); }
};
class Archive {
public:
  explicit Archive(const std::vector<std::pair<std::string, std::string>> &entries);
  // An archive with exactly these bytes.
  explicit Archive(std::string archive_bytes);
  zip_t *get() const { return archive.get(); }
  const std::string &bytes() const { return content; }

private:
  void open();
  std::string content;
  std::unique_ptr<zip_t, CloseArchive> archive;
};
