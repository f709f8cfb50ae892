// Views of our images as OpenCV has them. Declares nothing where OpenCV is not installed.
#ifndef ZPA_BENCHMARKS_SUPPORT_OPENCV_H
#define ZPA_BENCHMARKS_SUPPORT_OPENCV_H
#ifdef ZPA_PEER_OPENCV

#include <opencv2/core.hpp>

#include "support/Scene.h"

namespace ZPA::Benchmarks {

// The pixels of the image, not a copy; OpenCV keeps such memory when it writes the same size and type. It has
// no unsigned 32-bit type.
template <typename T> cv::Mat MatView(Image<T>& image) {
    static_assert(!std::is_same_v<T, unsigned int>, "OpenCV has no such type");
    return cv::Mat(image.Height(), image.Width(), cv::traits::Type<T>::value, image.Row(0),
                   static_cast<std::size_t>(image.Stride()) * sizeof(T));
}

}  // namespace ZPA::Benchmarks

#endif
#endif
