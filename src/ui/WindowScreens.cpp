#include "ui/WindowScreens.h"

#include <wx/display.h>

namespace tavlo {

std::vector<WindowPlace> screenAreas() {
    std::vector<WindowPlace> areas;
    for (unsigned i = 0; i < wxDisplay::GetCount(); ++i) {
        const wxRect area = wxDisplay(i).GetClientArea();
        areas.push_back({area.x, area.y, area.width, area.height});
    }
    return areas;
}

void placeWindow(wxTopLevelWindow& window, int left, int top) {
    const wxSize size = window.GetSize();
    const auto place = visiblePlace({left, top, size.x, size.y}, screenAreas());
    if (place) {
        window.SetSize(place->left, place->top, place->width, place->height);
    } else {
        window.CentreOnParent();
    }
}

}  // namespace tavlo
