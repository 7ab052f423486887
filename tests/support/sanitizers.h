// Whether the program runs under a sanitizer, where sweeps are made sparser and memory is not measured.
#ifndef VEK_TESTS_SUPPORT_SANITIZERS_H
#define VEK_TESTS_SUPPORT_SANITIZERS_H

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VEK_UNDER_SANITIZER true
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(undefined_behavior_sanitizer)
#define VEK_UNDER_SANITIZER true
#endif
#endif
#ifndef VEK_UNDER_SANITIZER
#define VEK_UNDER_SANITIZER false
#endif

#if defined(__SANITIZE_THREAD__)
#define VEK_UNDER_THREAD_SANITIZER true
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define VEK_UNDER_THREAD_SANITIZER true
#endif
#endif
#ifndef VEK_UNDER_THREAD_SANITIZER
#define VEK_UNDER_THREAD_SANITIZER false
#endif

namespace support {

constexpr bool underSanitizer = VEK_UNDER_SANITIZER;
constexpr bool underThreadSanitizer = VEK_UNDER_THREAD_SANITIZER;  // whose shadow is larger than what it watches

}  // namespace support

#endif
