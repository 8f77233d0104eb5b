/* Which names the shared library shows. Included by the other headers. */
#ifndef PELLUM_EXPORT_H
#define PELLUM_EXPORT_H

#if defined(__GNUC__)
#define PELLUM_API __attribute__((visibility("default")))
#else
#define PELLUM_API
#endif

#endif
