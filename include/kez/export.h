/*
 * The one export macro of libkez.
 *
 * The library is built with hidden symbols by default. Everything that an app
 * or an offline tool may call (the C functions, the JNI entry points and the
 * offline C++ classes) is marked with KEZ_EXPORT, and nothing else leaves
 * libkez.so.
 */
#ifndef KEZ_EXPORT_H_
#define KEZ_EXPORT_H_

#if defined(_WIN32)
#  if defined(KEZ_BUILDING_LIBRARY)
#    define KEZ_EXPORT __declspec(dllexport)
#  else
#    define KEZ_EXPORT
#  endif
#else
#  define KEZ_EXPORT __attribute__((visibility("default")))
#endif

#endif /* KEZ_EXPORT_H_ */
