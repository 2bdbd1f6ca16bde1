#ifndef QNCORVANE_EXPORT_H
#define QNCORVANE_EXPORT_H

/** Marks what leaves the library; everything else is hidden. */
#define QNCORVANE_API __attribute__((visibility("default")))

#endif
