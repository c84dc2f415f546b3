#include "gx/window/pictures.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <bit>
#include <memory>

#include "gx/display/input/menu_state.h"
#include "gx/vext.h"
#include "gx/window/questions.h"
#include "gx/window/window.h"

namespace {

constexpr int pixmap_margin = 10;  // what a level covers is kept at this place in its pixmap

// The pixmap, as large as the window; false when the server has no room for it.
bool has_picture() {
  auto& v = gx_vext;
  const gx_point16_t size = v.bitmap_size;
  if (v.hidden_size.x >= size.x && v.hidden_size.y >= size.y) return v.hidden_picture != 0;
  if (v.hidden_picture != 0) XFreePixmap(v.dpy, v.hidden_picture);
  v.hidden_size = size;
  const auto width = static_cast<unsigned>(size.x) + 1, height = static_cast<unsigned>(size.y) + 1;
  Pixmap pixmap{};
  const bool made = gx_without_x_error([&] {
    pixmap = XCreatePixmap(v.dpy, v.win, width, height,
                           static_cast<unsigned>(DefaultDepth(v.dpy, v.scrid)));
    XFillRectangle(v.dpy, pixmap, v.copy_gc, 0, 0, width, height);
  });
  v.hidden_picture = made ? pixmap : 0;
  return made;
}

// Room for the area in the level's pixmap; a window that has grown needs more than at the start.
Pixmap pixmap_with_room(int level, int width, int height) {
  unsigned long& pixmap = gx_vext.menu_pixid[static_cast<std::size_t>(level - 1)];
  const int needs_width = width + pixmap_margin, needs_height = height + pixmap_margin;
  const auto has = gx_x_place_of(pixmap);
  if (has && (has->width < needs_width || has->height < needs_height)) {
    XFreePixmap(gx_vext.dpy, pixmap);
    pixmap = XCreatePixmap(gx_vext.dpy, gx_vext.win, static_cast<unsigned>(needs_width),
                           static_cast<unsigned>(needs_height),
                           static_cast<unsigned>(DefaultDepth(gx_vext.dpy, gx_vext.scrid)));
  }
  return pixmap;
}

struct image_deleter_t {
  void operator()(XImage* image) const {
    image->data = nullptr;  // that is the canvas's, or the buffer's
    XDestroyImage(image);
  }
};
using image_t = std::unique_ptr<XImage, image_deleter_t>;

const Visual& visual() { return *DefaultVisual(gx_vext.dpy, gx_vext.scrid); }

int bits_per_pixel() {
  static const Display* asked = nullptr;
  static int bits = 0;
  if (asked == gx_vext.dpy) return bits;
  asked = gx_vext.dpy;
  bits = 0;
  int count = 0;
  XPixmapFormatValues* const formats = XListPixmapFormats(gx_vext.dpy, &count);
  for (int i = 0; i < count; ++i)
    if (formats[i].depth == DefaultDepth(gx_vext.dpy, gx_vext.scrid))
      bits = formats[i].bits_per_pixel;
  if (formats != nullptr) XFree(formats);
  return bits;
}

// Rows of `line` bytes in the order of this machine.
image_t image_of(const void* pixels, int width, int height, int line) {
  // Xlib reads them only.
  auto* const data = static_cast<char*>(const_cast<void*>(pixels));
  const auto depth = static_cast<unsigned>(DefaultDepth(gx_vext.dpy, gx_vext.scrid));
  image_t image(XCreateImage(gx_vext.dpy, DefaultVisual(gx_vext.dpy, gx_vext.scrid), depth, ZPixmap,
                             0, data, static_cast<unsigned>(width), static_cast<unsigned>(height),
                             bits_per_pixel(), line));
  if (image) image->byte_order = std::endian::native == std::endian::little ? LSBFirst : MSBFirst;
  return image;
}

void put(XImage& image, int from_x, int from_y, const gx_pixel_box_t& box) {
  XPutImage(gx_vext.dpy, gx_vext.win, gx_vext.copy_gc, &image, from_x, from_y, box.x, box.y,
            static_cast<unsigned>(box.width), static_cast<unsigned>(box.height));
}

// Eight bits of a colour in its place in a pixel of the screen.
unsigned long part(unsigned long mask, gx_pixel_t value) {
  const int shift = std::countr_zero(mask), bits = std::popcount(mask);
  return (bits < 8 ? value >> (8 - bits) : value << (bits - 8)) << shift & mask;
}

template <typename Pixel>
void put_converted(const gx_canvas_t& canvas, const gx_pixel_box_t& box) {
  static std::vector<Pixel> buffer;
  constexpr int even = 4 / sizeof(Pixel);  // rows begin at multiples of four bytes
  const int row_length = (box.width + even - 1) / even * even;
  buffer.assign(static_cast<std::size_t>(row_length * box.height), 0);
  const Visual& v = visual();
  auto* out = buffer.data();
  for (int y = box.y; y < box.y + box.height; ++y, out += row_length)
    for (int x = 0; x < box.width; ++x) {
      const gx_pixel_t pixel = canvas.row(y)[box.x + x];
      out[x] = static_cast<Pixel>(part(v.red_mask, pixel >> 16U & 0xFFU) |
                                  part(v.green_mask, pixel >> 8U & 0xFFU) |
                                  part(v.blue_mask, pixel & 0xFFU));
    }
  const auto image =
      image_of(buffer.data(), box.width, box.height, row_length * static_cast<int>(sizeof(Pixel)));
  if (image) put(*image, 0, 0, box);
}

}  // namespace

bool gx_begin_picture() {
  if (gx_vext.drawable != 0 || !has_picture()) return false;
  gx_vext.drawable = gx_vext.hidden_picture;
  return true;
}

void gx_end_picture(const gx_bounds16_t& shown) {
  auto& v = gx_vext;
  v.drawable = 0;
  if (shown.xmax < shown.xmin || shown.ymax < shown.ymin) return;
  XCopyArea(v.dpy, v.hidden_picture, v.win, v.copy_gc, shown.xmin, shown.ymin,
            static_cast<unsigned>(shown.xmax - shown.xmin + 1),
            static_cast<unsigned>(shown.ymax - shown.ymin + 1), shown.xmin, shown.ymin);
  XFlush(v.dpy);
}

void gx_keep_area(int level, int x, int y, int width, int height) {
  const Pixmap pixmap = pixmap_with_room(level, width, height);
  XCopyArea(gx_vext.dpy, gx_vext.win, pixmap, gx_vext.copy_gc, x, y, static_cast<unsigned>(width),
            static_cast<unsigned>(height), pixmap_margin, pixmap_margin);
}

void gx_put_area_back(int level, int x, int y, int width, int height) {
  XCopyArea(gx_vext.dpy, gx_vext.menu_pixid[static_cast<std::size_t>(level - 1)], gx_vext.win,
            gx_vext.copy_gc, pixmap_margin, pixmap_margin, static_cast<unsigned>(width),
            static_cast<unsigned>(height), x, y);
}

bool gx_takes_pixels() {
  return visual().c_class == TrueColor && (bits_per_pixel() == 16 || bits_per_pixel() == 32);
}

void gx_put_pixels(const gx_canvas_t& canvas, const gx_pixel_box_t& box) {
  const Visual& v = visual();
  const bool is_plain = v.red_mask == 0xFF0000 && v.green_mask == 0xFF00 && v.blue_mask == 0xFF;
  if (bits_per_pixel() == 16) return put_converted<std::uint16_t>(canvas, box);
  if (!is_plain) return put_converted<std::uint32_t>(canvas, box);
  const auto image = image_of(canvas.row(0), canvas.width(), canvas.height(), 4 * canvas.width());
  if (image) put(*image, box.x, box.y, box);
}
