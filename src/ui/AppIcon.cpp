#include "ui/AppIcon.h"

#include <wx/bitmap.h>
#include <wx/dcmemory.h>
#include <wx/graphics.h>
#include <wx/icon.h>
#include <wx/image.h>

#include <array>
#include <memory>

namespace tavlo {

namespace {
// The same shapes as in packaging/tavlo.svg, on a square of 64: a list, and a note before it.
void draw(wxGraphicsContext& to, double scale) {
    to.Scale(scale, scale);
    to.SetPen(*wxTRANSPARENT_PEN);
    to.SetBrush(wxBrush(wxColour(0x1F, 0x3A, 0x5F)));
    to.DrawRoundedRectangle(2, 2, 60, 60, 12);
    to.SetBrush(wxBrush(wxColour(0x9F, 0xC5, 0xE8)));
    for (const int y : {16, 28, 40}) to.DrawRoundedRectangle(12, y, y == 40 ? 14 : 24, 5, 2.5);
    to.SetBrush(wxBrush(wxColour(0xFF, 0xC8, 0x57)));
    to.DrawEllipse(27, 41, 13, 10);
    to.DrawEllipse(43, 37, 13, 10);
    to.DrawRectangle(37, 17, 3, 29);
    to.DrawRectangle(53, 13, 3, 29);
    wxGraphicsPath beam = to.CreatePath();
    beam.MoveToPoint(37, 17);
    beam.AddLineToPoint(56, 13);
    beam.AddLineToPoint(56, 20);
    beam.AddLineToPoint(37, 24);
    beam.CloseSubpath();
    to.FillPath(beam);
}

wxIcon iconOf(int side) {
    wxImage image(side, side);
    image.InitAlpha();
    std::fill_n(image.GetAlpha(), side * side, static_cast<unsigned char>(0));
    const std::unique_ptr<wxGraphicsContext> context(wxGraphicsContext::Create(image));
    if (context) {
        draw(*context, side / 64.0);
        context->Flush();
    }
    wxIcon icon;
    icon.CopyFromBitmap(wxBitmap(image));
    return icon;
}
}  // namespace

wxIconBundle appIcons() {
    wxIconBundle icons;
    for (const int side : {16, 32, 48, 64}) icons.AddIcon(iconOf(side));
    return icons;
}

}  // namespace tavlo
