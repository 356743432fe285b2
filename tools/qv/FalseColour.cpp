#include "FalseColour.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace qvtool {

namespace {

constexpr int kMargin = 8;
constexpr int kBarGap = 12, kBarWidth = 14, kTextGap = 6, kTextWidth = 72;
constexpr int kGlyphScale = 2; // each font pixel is 2 x 2
constexpr int kPictureWidth = 256; // small frames are scaled up to about this

struct SRgb {
    uint8_t r, g, b;
};

// 3 x 5 glyphs, one row a byte, bit 2 the left column. '\'' is the degree sign.
struct SGlyph {
    char c;
    uint8_t rows[5];
};
constexpr SGlyph kFont[] = {
    {'0', {7, 5, 5, 5, 7}}, {'1', {2, 6, 2, 2, 7}}, {'2', {7, 1, 7, 4, 7}}, {'3', {7, 1, 7, 1, 7}},
    {'4', {5, 5, 7, 1, 1}}, {'5', {7, 4, 7, 1, 7}}, {'6', {7, 4, 7, 5, 7}}, {'7', {7, 1, 1, 1, 1}},
    {'8', {7, 5, 7, 5, 7}}, {'9', {7, 5, 7, 1, 7}}, {'-', {0, 0, 7, 0, 0}}, {'.', {0, 0, 0, 0, 2}},
    {'C', {7, 4, 4, 4, 7}}, {'\'', {7, 5, 7, 0, 0}},
};

// Black, blue, magenta, orange, yellow, white: rises in brightness, so the
// picture reads in grey too.
SRgb Colour(double t) {
    static constexpr SRgb stops[] = {{0, 0, 0}, {32, 0, 140}, {180, 0, 150}, {240, 100, 0}, {255, 220, 0}, {255, 255, 255}};
    constexpr int last = int(std::size(stops)) - 1;
    t = std::clamp(t, 0.0, 1.0) * last;
    int i = std::min(int(t), last - 1);
    double f = t - i;
    auto mix = [f](uint8_t a, uint8_t b) { return uint8_t(std::lround(a + (b - a) * f)); };
    return {mix(stops[i].r, stops[i + 1].r), mix(stops[i].g, stops[i + 1].g), mix(stops[i].b, stops[i + 1].b)};
}

class CCanvas {
public:
    explicit CCanvas(qv::HBITMAP bitmap) : bitmap_(bitmap) {}
    // (x, y) from the top left; outside pixels are ignored.
    void Put(int x, int y, SRgb c) {
        if (x < 0 || y < 0 || x >= bitmap_->Width || y >= bitmap_->Height) return;
        uint8_t *p = bitmap_->Row(bitmap_->Height - 1 - y) + 3 * x;
        p[0] = c.b, p[1] = c.g, p[2] = c.r;
    }
    void Fill(int x, int y, int w, int h, SRgb c) {
        for (int j = 0; j < h; ++j)
            for (int i = 0; i < w; ++i) Put(x + i, y + j, c);
    }
    void Text(int x, int y, char const *text, SRgb c) {
        for (; *text; ++text, x += 4 * kGlyphScale)
            for (SGlyph const &g : kFont)
                if (g.c == *text)
                    for (int row = 0; row < 5; ++row)
                        for (int col = 0; col < 3; ++col)
                            if (g.rows[row] & (4 >> col))
                                Fill(x + col * kGlyphScale, y + row * kGlyphScale, kGlyphScale, kGlyphScale, c);
    }

private:
    qv::HBITMAP bitmap_;
};

void Label(CCanvas &canvas, int x, int y, double celsius) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f'C", celsius);
    canvas.Text(x, y - 5 * kGlyphScale / 2, text, {255, 255, 255});
}

} // namespace

qv::HBITMAP FalseColourPicture(float const *celsius, uint32_t width, uint32_t height) {
    size_t const n = size_t(width) * height;
    float low = INFINITY, high = -INFINITY;
    for (size_t i = 0; i < n; ++i)
        if (std::isfinite(celsius[i])) low = std::min(low, celsius[i]), high = std::max(high, celsius[i]);
    if (!(low <= high)) low = high = 0;
    double const span = high > low ? high - low : 1.0;
    int const scale = std::max(1, kPictureWidth / int(std::max<uint32_t>(width, 1)));
    if (width > 16384 || height > 16384) return nullptr;
    int const w = int(width) * scale, h = int(height) * scale;
    int const barX = kMargin + w + kBarGap, textX = barX + kBarWidth + kTextGap;
    int const top = kMargin + 5 * kGlyphScale; // room for the top label
    qv::HBITMAP bitmap = qv::CreateBitmap(textX + kTextWidth, top + h + kMargin + 5 * kGlyphScale, 24);
    if (!bitmap) return nullptr;
    CCanvas canvas(bitmap);
    canvas.Fill(0, 0, bitmap->Width, bitmap->Height, {0, 0, 0});
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x) {
            float const v = celsius[size_t(y) * width + x];
            SRgb const c = std::isfinite(v) ? Colour((v - low) / span) : SRgb{128, 128, 128};
            canvas.Fill(kMargin + int(x) * scale, top + int(y) * scale, scale, scale, c);
        }
    for (int y = 0; y < h; ++y) canvas.Fill(barX, top + y, kBarWidth, 1, Colour(1.0 - double(y) / std::max(h - 1, 1)));
    Label(canvas, textX, top, high);
    Label(canvas, textX, top + h / 2, (low + high) / 2.0);
    Label(canvas, textX, top + h - 1, low);
    return bitmap;
}

} // namespace qvtool
