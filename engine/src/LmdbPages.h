// LmdbPages: LMDB's on-disk page layout (data format version 1, 64-bit builds), read with a
// bound check at every step, for the checks LMDB does not make on its normal path.
#pragma once

#include <cstddef>
#include <cstdint>

namespace cte {

// True for a page size LMDB writes: a power of two from 512 to 65536. LMDB takes the size a
// file's first meta page gives without checking it.
bool PageSizeSound(size_t psize);

// True when the two meta pages at the start of an LMDB file of sound page size psize (head
// holds 2 * psize bytes) both give that page size and are a pair LMDB writes: every commit writes the meta page of its
// transaction number's parity with the number after the other page's, so the numbers differ by
// exactly one, the even one in page 0 (both are 0 in a file never committed), and the newer
// page's last page is not below the older's (a file never shrinks). A number damaged otherwise
// would make LMDB read an older commit as the current one, or write over pages in use. The
// newer page's free list must have integer keys and its main database plain ones (LMDB would take
// other flags as they are: a duplicate flag fails an assertion in its first cursor).
bool MetaPagesAgree(const uint8_t* head, size_t psize);

// Walks the whole file (size bytes at map) from its current meta page without trusting any of
// its pages: every page the free list and the databases reach lies inside the file, names its
// own number, has the kind its place in its tree calls for (no flag LMDB keeps only in memory),
// holds its nodes inside itself, and sits at the depth its database records; overflow runs fit;
// no page is reached twice; each database's entry and page counts are the ones walked; and
// every page the free list names is one no database uses. False at the first failure.
bool PagesSound(const uint8_t* map, size_t size);

}  // namespace cte
