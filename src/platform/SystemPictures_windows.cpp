// clang-format off
#include <ole2.h>
#include <windows.h>
#include <algorithm>
// The library's headers ask for `min` and `max` by their bare names.
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>
// clang-format on

#include <memory>

#include "platform/SystemPictures.h"

namespace tavlo {

namespace {
constexpr std::size_t pixelSize = 4;  // blue, green, red, alpha

// The library's functions, found when they are needed: window toolkits bring functions of the same
// names that call it, and a program holds each name once.
#define GDIPLUS(name) decltype(&Gdiplus::DllExports::name) name = find<decltype(name)>(#name)
class Library {
 public:
    Library() {
        Gdiplus::GdiplusStartupInput input;
        isOpen_ = isComplete_ && start_(&token_, &input, nullptr) == Gdiplus::Ok;
    }
    ~Library() {
        if (isOpen_) stop_(token_);
        if (module_ != nullptr) ::FreeLibrary(module_);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    [[nodiscard]] bool isOpen() const { return isOpen_; }

 private:
    template <class Function>
    Function find(const char* name) {
        const FARPROC found = module_ == nullptr ? nullptr : ::GetProcAddress(module_, name);
        if (found == nullptr) isComplete_ = false;
        return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(found));
    }

    HMODULE module_ = ::LoadLibraryW(L"gdiplus.dll");
    bool isComplete_ = true;
    decltype(&Gdiplus::GdiplusStartup) start_ = find<decltype(start_)>("GdiplusStartup");
    decltype(&Gdiplus::GdiplusShutdown) stop_ = find<decltype(stop_)>("GdiplusShutdown");
    ULONG_PTR token_ = 0;
    bool isOpen_ = false;

 public:
    GDIPLUS(GdipCreateBitmapFromStream);
    GDIPLUS(GdipCreateBitmapFromScan0);
    GDIPLUS(GdipGetImageWidth);
    GDIPLUS(GdipGetImageHeight);
    GDIPLUS(GdipBitmapLockBits);
    GDIPLUS(GdipBitmapUnlockBits);
    GDIPLUS(GdipSaveImageToStream);
    GDIPLUS(GdipDisposeImage);
};
#undef GDIPLUS

// Lets go of a bitmap when it goes.
class Bitmap {
 public:
    explicit Bitmap(const Library& library) : library_(library) {}
    ~Bitmap() {
        if (bitmap != nullptr) library_.GdipDisposeImage(bitmap);
    }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    Gdiplus::GpBitmap* bitmap = nullptr;

 private:
    const Library& library_;
};

struct Release {
    void operator()(IStream* stream) const { stream->Release(); }
};
using Stream = std::unique_ptr<IStream, Release>;

// A stream over memory of its own; none where there is not enough.
Stream openStream(Bytes bytes) {
    IStream* opened = nullptr;
    if (FAILED(::CreateStreamOnHGlobal(nullptr, TRUE, &opened))) return nullptr;
    Stream stream(opened);
    ULONG written = 0;
    const auto size = static_cast<ULONG>(bytes.size());
    if (size != bytes.size()) return nullptr;
    if (size > 0 && (FAILED(stream->Write(bytes.data(), size, &written)) || written != size)) {
        return nullptr;
    }
    return FAILED(stream->Seek({}, STREAM_SEEK_SET, nullptr)) ? nullptr : std::move(stream);
}

std::string bytesOf(IStream& stream) {
    STATSTG status{};
    if (FAILED(stream.Stat(&status, STATFLAG_NONAME))) return {};
    std::string bytes(static_cast<std::size_t>(status.cbSize.QuadPart), '\0');
    ULONG taken = 0;
    if (FAILED(stream.Seek({}, STREAM_SEEK_SET, nullptr)) ||
        FAILED(stream.Read(bytes.data(), static_cast<ULONG>(bytes.size()), &taken))) {
        return {};
    }
    bytes.resize(taken);
    return bytes;
}

PixelImage pixelsOf(const Gdiplus::BitmapData& data) {
    PixelImage image{data.Width, data.Height, {}, {}};
    const std::size_t count = std::size_t{data.Width} * data.Height;
    image.rgb.reserve(count * 3);
    image.alpha.reserve(count);
    for (UINT y = 0; y < data.Height; ++y) {
        const auto* pixel = static_cast<const std::uint8_t*>(data.Scan0) +
                            static_cast<std::ptrdiff_t>(y) * data.Stride;
        for (UINT x = 0; x < data.Width; ++x, pixel += pixelSize) {
            image.rgb.insert(image.rgb.end(), {pixel[2], pixel[1], pixel[0]});
            image.alpha.push_back(pixel[3]);
        }
    }
    constexpr std::uint8_t opaque = 255;
    const bool isOpaque = std::all_of(image.alpha.begin(), image.alpha.end(),
                                      [](std::uint8_t alpha) { return alpha == opaque; });
    if (isOpaque) image.alpha.clear();
    return image;
}

std::optional<PixelImage> decodeStream(const Library& library, IStream& stream) {
    Bitmap held(library);
    if (library.GdipCreateBitmapFromStream(&stream, &held.bitmap) != Gdiplus::Ok) {
        return std::nullopt;
    }
    UINT width = 0;
    UINT height = 0;
    library.GdipGetImageWidth(held.bitmap, &width);
    library.GdipGetImageHeight(held.bitmap, &height);
    const std::uint64_t pixels = std::uint64_t{width} * height;
    if (pixels == 0 || pixels > largestPicturePixels) return std::nullopt;
    const Gdiplus::Rect all(0, 0, static_cast<INT>(width), static_cast<INT>(height));
    Gdiplus::BitmapData data;
    if (library.GdipBitmapLockBits(held.bitmap, &all, Gdiplus::ImageLockModeRead,
                                   PixelFormat32bppARGB, &data) != Gdiplus::Ok) {
        return std::nullopt;
    }
    PixelImage image = pixelsOf(data);
    library.GdipBitmapUnlockBits(held.bitmap, &data);
    return image;
}

std::vector<std::uint8_t> interleaved(const PixelImage& image) {
    const std::size_t count = std::size_t{image.width} * image.height;
    std::vector<std::uint8_t> bytes;
    bytes.reserve(count * pixelSize);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* rgb = image.rgb.data() + i * 3;
        const std::uint8_t alpha = image.alpha.empty() ? std::uint8_t{255} : image.alpha[i];
        bytes.insert(bytes.end(), {rgb[2], rgb[1], rgb[0], alpha});
    }
    return bytes;
}
}  // namespace

std::optional<PixelImage> decodePicture(Bytes bytes) {
    const Library library;
    const Stream stream = library.isOpen() ? openStream(bytes) : nullptr;
    return stream ? decodeStream(library, *stream) : std::nullopt;
}

std::string encodePng(const PixelImage& image) {
    constexpr CLSID pngEncoder = {
        0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
    const std::size_t count = std::size_t{image.width} * image.height;
    if (count == 0 || count > largestPicturePixels || image.rgb.size() != count * 3) return {};
    const Library library;
    const Stream stream = library.isOpen() ? openStream({}) : nullptr;
    if (!stream) return {};
    std::vector<std::uint8_t> pixels = interleaved(image);
    Bitmap held(library);
    if (library.GdipCreateBitmapFromScan0(
            static_cast<INT>(image.width), static_cast<INT>(image.height),
            static_cast<INT>(image.width * pixelSize), PixelFormat32bppARGB, pixels.data(),
            &held.bitmap) != Gdiplus::Ok ||
        library.GdipSaveImageToStream(held.bitmap, stream.get(), &pngEncoder, nullptr) !=
            Gdiplus::Ok) {
        return {};
    }
    return bytesOf(*stream);
}

}  // namespace tavlo
