#include "ui/PictureImage.h"

#include <wx/app.h>
#include <wx/log.h>
#include <wx/mstream.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "desk/PictureHead.h"
#include "platform/SystemPictures.h"

namespace tavlo {

namespace {
// --- One picture ---------------------------------------------------------------------------------

// A malloc'd copy, as the toolkit wants to own it.
unsigned char* ownedCopy(const std::vector<std::uint8_t>& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size()));
    if (copy != nullptr) std::memcpy(copy, bytes.data(), bytes.size());
    return copy;
}

wxImage imageOfPixels(const PixelImage& pixels) {
    unsigned char* rgb = ownedCopy(pixels.rgb);
    if (rgb == nullptr) return {};
    wxImage image(static_cast<int>(pixels.width), static_cast<int>(pixels.height), rgb);
    unsigned char* alpha = pixels.alpha.empty() ? nullptr : ownedCopy(pixels.alpha);
    if (alpha != nullptr) image.SetAlpha(alpha);
    return image;
}

template <typename Handler>
void addHandler() {
    auto handler = std::make_unique<Handler>();
    if (wxImage::FindHandler(handler->GetName()) == nullptr) {
        wxImage::AddHandler(handler.release());
    }
}

// Not the one of GIF: it reads beyond its tables when the bytes are broken.
void addHandlers() {
    static const bool added = [] {
        addHandler<wxBMPHandler>();
#if wxUSE_LIBPNG
        addHandler<wxPNGHandler>();
#endif
#if wxUSE_LIBJPEG
        addHandler<wxJPEGHandler>();
#endif
        return true;
    }();
    static_cast<void>(added);
}

struct ToolkitKind {
    std::string_view name;
    wxBitmapType type;
};
constexpr ToolkitKind kinds[] = {
    {"PNG", wxBITMAP_TYPE_PNG}, {"JPEG", wxBITMAP_TYPE_JPEG}, {"BMP", wxBITMAP_TYPE_BMP}};

// By the kind that the bytes tell: handlers that somebody else added are not asked.
wxImage imageByToolkit(Bytes bytes) {
    addHandlers();
    wxMemoryInputStream stream(bytes.data(), bytes.size());
    wxImage image;
    image.SetLoadFlags(0);  // not verbose
    const auto head = readPictureHead(bytes);
    const auto* kind =
        std::find_if(std::begin(kinds), std::end(kinds),
                     [&](const ToolkitKind& row) { return head && head->name == row.name; });
    if (kind == std::end(kinds)) return {};
    return image.LoadFile(stream, kind->type) ? image : wxImage();
}

bool isShowable(const std::optional<PictureHead>& head) {
    constexpr std::uint32_t largestSide = 65535;
    return head && head->width > 0 && head->height > 0 && head->width <= largestSide &&
           head->height <= largestSide &&
           std::uint64_t{head->width} * head->height <= largestPicturePixels;
}

ShownPicture shownOf(Bytes bytes) {
    ShownPicture shown;
    try {
        shown.image = imageOf(bytes);
        if (!shown.image.IsOk()) return shown;
        shown.full = shown.image.GetSize();
        const int longest = std::max(shown.full.x, shown.full.y);
        if (longest > ShownPicture::largestSide) {
            const double scale = double{ShownPicture::largestSide} / longest;
            shown.image.Rescale(std::max(1, static_cast<int>(shown.full.x * scale)),
                                std::max(1, static_cast<int>(shown.full.y * scale)),
                                wxIMAGE_QUALITY_BOX_AVERAGE);
        }
    } catch (const std::bad_alloc&) {
        shown = {};
    }
    return shown;
}

// What takes long enough to be felt.
bool isLarge(Bytes bytes) {
    constexpr std::size_t manyBytes = 1U << 20U;
    constexpr std::uint64_t manyPixels = 2'000'000;
    const auto head = readPictureHead(bytes);
    return bytes.size() > manyBytes ||
           (isShowable(head) && std::uint64_t{head->width} * head->height > manyPixels);
}
}  // namespace

wxImage imageOf(Bytes bytes) {
    const wxLogNull quiet;
    if (!isShowable(readPictureHead(bytes))) return {};
    try {
        if (const auto pixels = decodePicture(bytes)) return imageOfPixels(*pixels);
        return imageByToolkit(bytes);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

bool isBrokenPicture(Bytes bytes) {
    const auto head = readPictureHead(bytes);
    const bool isKnown = std::ranges::any_of(
        kinds, [&](const ToolkitKind& row) { return head && head->name == row.name; });
    return isKnown && isShowable(head) && !imageOf(bytes).IsOk();
}

std::string pngOf(const wxImage& image) {
    if (!image.IsOk()) return {};
    const auto width = static_cast<std::uint32_t>(image.GetWidth());
    const auto height = static_cast<std::uint32_t>(image.GetHeight());
    const std::size_t count = std::size_t{width} * height;
    PixelImage pixels{width, height, {image.GetData(), image.GetData() + count * 3}, {}};
    if (image.HasAlpha()) pixels.alpha.assign(image.GetAlpha(), image.GetAlpha() + count);
    std::string png = encodePng(pixels);
    if (!png.empty()) return png;
    const wxLogNull quiet;
    addHandlers();
    wxMemoryOutputStream stream;
    if (!image.SaveFile(stream, wxBITMAP_TYPE_PNG)) return {};
    png.resize(stream.GetSize());
    stream.CopyTo(png.data(), png.size());
    return png;
}

// --- The loader ----------------------------------------------------------------------------------

/// Stays while somebody may still tell it of a picture; belongs to the window's thread.
class PictureLoader::Receiver {
 public:
    void expect(unsigned number, Done done) {
        number_ = number;
        done_ = std::move(done);
    }
    void receive(unsigned number, const ShownPicture& shown) {
        if (number != number_ || !done_) return;
        const Done done = std::exchange(done_, nullptr);  // it may ask for another one
        done(shown);
    }

 private:
    unsigned number_ = 0;
    Done done_;
};

PictureLoader::PictureLoader() : receiver_(std::make_shared<Receiver>()) {}

PictureLoader::~PictureLoader() {
    forget();
    {
        const std::lock_guard lock(mutex_);
        stops_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) thread_.join();
}

void PictureLoader::forget() {
    receiver_->expect(++number_, nullptr);
    const std::lock_guard lock(mutex_);
    next_.reset();
}

void PictureLoader::load(const PictureBytes& bytes, const Done& done) {
    forget();
    addHandlers();  // the list of them is no thread's own
    if (!isLarge(*bytes)) return done(shownOf(*bytes));
    receiver_->expect(number_, done);
    {
        const std::lock_guard lock(mutex_);
        next_ = Job{bytes, number_};
    }
    if (!thread_.joinable()) thread_ = std::thread([this] { work(); });
    wake_.notify_one();
}

std::optional<PictureLoader::Job> PictureLoader::waitForJob() {
    std::unique_lock lock(mutex_);
    wake_.wait(lock, [this] { return stops_ || next_.has_value(); });
    if (stops_) return std::nullopt;
    return std::exchange(next_, std::nullopt);
}

// The picture goes over behind a pointer: the toolkit's own counting is no good for two threads.
void PictureLoader::work() {
    while (const auto job = waitForJob()) {
        auto shown = std::make_shared<ShownPicture>(shownOf(*job->bytes));
        wxTheApp->CallAfter([receiver = receiver_, number = job->number, shown] {
            receiver->receive(number, *shown);
        });
    }
}

}  // namespace tavlo
