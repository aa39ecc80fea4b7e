#include "platform/owc/chartview/gifwriter.h"

#include <QHash>

#include <algorithm>
#include <bit>
#include <gif_lib.h>
#include <memory>
#include <vector>

namespace platform::owc {

namespace {

constexpr int mostColors = 256;

struct Indexed {
  QList<QRgb> colors;
  std::vector<GifByteType> pixels;  // row by row
};

/// Colours that agree in the upper `bits` bits of each part are a group.
QRgb groupOf(QRgb color, int bits) {
  const int mask = (0xff << (8 - bits)) & 0xff;
  return qRgb(qRed(color) & mask, qGreen(color) & mask, qBlue(color) & mask);
}

QHash<QRgb, qint64> countColors(const QImage& image) {
  QHash<QRgb, qint64> counts;
  for (int y = 0; y < image.height(); ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    for (int x = 0; x < image.width(); ++x) ++counts[line[x] & 0xffffff];
  }
  return counts;
}

/// The most frequent colour of each group, with the finest groups of which there are not too many. Equal
/// counts are settled by the colour itself, so that the same picture always gives the same file.
QHash<QRgb, QRgb> chooseColors(const QHash<QRgb, qint64>& counts, int* bits) {
  QHash<QRgb, QRgb> chosen;
  for (*bits = 8; *bits > 0; --*bits) {
    chosen.clear();
    for (auto each = counts.begin(); each != counts.end(); ++each) {
      const QRgb group = groupOf(each.key(), *bits) & 0xffffff;
      const auto best = chosen.constFind(group);
      const bool better = best == chosen.constEnd() || each.value() > counts[*best] ||
                          (each.value() == counts[*best] && each.key() < *best);
      if (better) chosen[group] = each.key();
    }
    if (chosen.size() <= mostColors) break;
  }
  return chosen;
}

Indexed indexed(const QImage& image) {
  Indexed result;
  int bits = 8;
  const QHash<QRgb, QRgb> chosen = chooseColors(countColors(image), &bits);
  result.colors = chosen.values();
  std::sort(result.colors.begin(), result.colors.end());
  QHash<QRgb, GifByteType> indexByGroup;
  for (auto each = chosen.begin(); each != chosen.end(); ++each)
    indexByGroup[each.key()] = static_cast<GifByteType>(
        std::lower_bound(result.colors.begin(), result.colors.end(), each.value()) - result.colors.begin());
  result.pixels.reserve(static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()));
  for (int y = 0; y < image.height(); ++y) {
    const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    for (int x = 0; x < image.width(); ++x)
      result.pixels.push_back(indexByGroup[groupOf(line[x], bits) & 0xffffff]);
  }
  return result;
}

struct FreeMap {
  void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};

/// The table's size is a power of two; what is left over stays black.
std::unique_ptr<ColorMapObject, FreeMap> colorMap(const QList<QRgb>& colors) {
  const auto needed = std::max<std::size_t>(2, static_cast<std::size_t>(colors.size()));
  std::unique_ptr<ColorMapObject, FreeMap> map(
      GifMakeMapObject(static_cast<int>(std::bit_ceil(needed)), nullptr));
  if (!map) return map;
  for (qsizetype i = 0; i < colors.size(); ++i)
    map->Colors[i] = {static_cast<GifByteType>(qRed(colors[i])), static_cast<GifByteType>(qGreen(colors[i])),
                      static_cast<GifByteType>(qBlue(colors[i]))};
  return map;
}

int append(GifFileType* gif, const GifByteType* bytes, int size) {
  static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(bytes), size);
  return size;
}

bool put(GifFileType* gif, const QSize& size, const ColorMapObject* map, Indexed& picture) {
  if (EGifPutScreenDesc(gif, size.width(), size.height(), 8, 0, map) == GIF_ERROR) return false;
  if (EGifPutImageDesc(gif, 0, 0, size.width(), size.height(), false, nullptr) == GIF_ERROR) return false;
  GifByteType* line = picture.pixels.data();
  for (int y = 0; y < size.height(); ++y, line += size.width())
    if (EGifPutLine(gif, line, size.width()) == GIF_ERROR) return false;
  return true;
}

}  // namespace

QByteArray gifOf(const QImage& image) {
  const QImage plain = image.convertToFormat(QImage::Format_RGB32);
  if (plain.isNull()) return {};
  Indexed picture = indexed(plain);
  const auto map = colorMap(picture.colors);
  QByteArray bytes;
  GifFileType* gif = map ? EGifOpen(&bytes, append, nullptr) : nullptr;
  if (!gif) return {};
  const bool written = put(gif, plain.size(), map.get(), picture);
  const bool closed = EGifCloseFile(gif, nullptr) != GIF_ERROR;
  return written && closed ? bytes : QByteArray();
}

}  // namespace platform::owc
