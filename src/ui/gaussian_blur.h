#pragma once

#include <QImage>

namespace tessaly {

// Blurs a picture of format Alpha8 as a Gaussian with this standard deviation (pixels) does, within 1 % of
// full strength. The result has the same size, and whatever lies outside the picture counts as transparent:
// leave room of three standard deviations around the shape. A deviation of 0 returns the picture as it is.
QImage blurredAlpha(const QImage &alpha, double sigma);

} // namespace tessaly
