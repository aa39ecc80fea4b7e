#pragma once
#include <QImage>

namespace platform::owc {

/// The picture as a GIF file of one image. A GIF has 256 colours at most: a picture of more keeps the most
/// frequent of each group of similar ones, so that flat areas stay as they are. Empty when the picture is
/// empty or there is no memory for it.
QByteArray gifOf(const QImage& image);

}  // namespace platform::owc
