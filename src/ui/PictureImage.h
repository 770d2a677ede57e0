#pragma once

#include <wx/image.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/File.h"

namespace tavlo {

using PictureBytes = std::shared_ptr<const std::vector<std::uint8_t>>;

/// Decodes a picture by the system, or else by the toolkit (PNG, JPEG, BMP). A broken one, one
/// of more than `largestPicturePixels` or one that there is no memory for gives an invalid image.
/// Never logs; may be called from any thread once one call has ended.
wxImage imageOf(Bytes bytes);

/// Whether a picture of a kind that can be decoded here cannot.
bool isBrokenPicture(Bytes bytes);

/// The image as a PNG file; empty where it cannot be made.
std::string pngOf(const wxImage& image);

/// A picture made ready to be shown.
struct ShownPicture {
    wxImage image;  ///< invalid where it could not be decoded; never larger than `largestSide`
    wxSize full;    ///< of the picture itself
    static constexpr int largestSide = 1600;
};

/// Decodes one picture after the other; large ones by a thread of its own, so that the window goes
/// on. All of it is called on the window's thread.
class PictureLoader {
 public:
    using Done = std::function<void(const ShownPicture&)>;

    PictureLoader();
    /// Waits for a picture that is being decoded; nobody is told of it.
    ~PictureLoader();
    PictureLoader(const PictureLoader&) = delete;
    PictureLoader& operator=(const PictureLoader&) = delete;

    /// `done` is called at once for a small picture, else later from the event loop. A further
    /// call takes the place of all before it, and theirs are not called any more.
    void load(const PictureBytes& bytes, const Done& done);
    /// Calls nobody for what was asked before.
    void forget();

 private:
    struct Job {
        PictureBytes bytes;
        unsigned number = 0;
    };
    class Receiver;

    void work();
    std::optional<Job> waitForJob();

    std::shared_ptr<Receiver> receiver_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::optional<Job> next_;
    bool stops_ = false;
    unsigned number_ = 0;
    std::thread thread_;  // started with the first large picture
};

}  // namespace tavlo
