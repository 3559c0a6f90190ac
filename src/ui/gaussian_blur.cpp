#include "ui/gaussian_blur.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace tessaly {

namespace {

constexpr int passes = 3;

// A moving average: whole weights up to `reach` steps away, a part of the weight one step further, so that
// its variance is exactly what was asked for.
struct Box
{
    int reach;
    float weight;
    float edgeWeight;
};

Box boxOfVariance(double variance)
{
    const double reach = std::floor(0.5 * std::sqrt(12.0 * variance + 1.0) - 0.5);
    const double whole = 2.0 * reach + 1.0;
    const double outer = (reach + 1.0) * (reach + 1.0);
    const double part = whole * (reach * (reach + 1.0) - 3.0 * variance) / (6.0 * (variance - outer));
    const double total = whole + 2.0 * part;
    return {static_cast<int>(reach), static_cast<float>(1.0 / total), static_cast<float>(part / total)};
}

// Both lines hold `reach + 1` zeros before and after their `count` values.
void average(const std::vector<float> &from, std::vector<float> &to, int count, const Box &box)
{
    const int margin = box.reach + 1;
    const float *in = from.data() + margin;
    float *out = to.data() + margin;
    float sum = std::accumulate(in, in + box.reach, 0.0F);
    for (int i = 0; i < count; ++i) {
        sum += in[i + box.reach];
        out[i] = sum * box.weight + (in[i - margin] + in[i + margin]) * box.edgeWeight;
        sum -= in[i - box.reach];
    }
}

QImage blurredRowsTurned(const QImage &picture, const Box &box)
{
    const int count = picture.width();
    const int margin = box.reach + 1;
    std::vector<float> line(static_cast<std::size_t>(count) + 2 * static_cast<std::size_t>(margin));
    std::vector<float> next(line.size());
    QImage turned(picture.height(), count, QImage::Format_Alpha8);
    uchar *const turnedBits = turned.bits();
    for (int y = 0; y < picture.height(); ++y) {
        const uchar *row = picture.constScanLine(y);
        // Shapes are mostly straight: a row like the one before it needs no work.
        if (y == 0 || !std::equal(row, row + count, picture.constScanLine(y - 1))) {
            std::copy(row, row + count, line.begin() + margin);
            for (int pass = 0; pass < passes; ++pass) {
                average(line, next, count, box);
                line.swap(next);
            }
        }
        const float *blurred = line.data() + margin;
        for (int x = 0; x < count; ++x) {
            const float value = std::clamp(blurred[x] + 0.5F, 0.0F, 255.0F);
            turnedBits[x * turned.bytesPerLine() + y] = static_cast<uchar>(value);
        }
    }
    return turned;
}

} // namespace

QImage blurredAlpha(const QImage &alpha, double sigma)
{
    if (sigma <= 0.0) return alpha;
    const Box box = boxOfVariance(sigma * sigma / passes);
    return blurredRowsTurned(blurredRowsTurned(alpha, box), box);
}

} // namespace tessaly
