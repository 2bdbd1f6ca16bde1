#include "ResultBuffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include "ToolError.h"

namespace Corvane::Tool {
namespace {

std::size_t PageSize() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

/// `size` in whole pages, and one more as the guard.
std::size_t MappedSize(std::size_t size) { return (size / PageSize() + 2) * PageSize(); }

}  // namespace

ResultBuffer::ResultBuffer(std::size_t size) : m_mapped(MappedSize(size)) {
  void* const room =
      mmap(nullptr, m_mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (room == MAP_FAILED) throw ToolError("no memory for a result of " + std::to_string(size) + " bytes");
  m_data = static_cast<char*>(room);
  mprotect(m_data + m_mapped - PageSize(), PageSize(), PROT_NONE);
}

ResultBuffer::~ResultBuffer() { munmap(m_data, m_mapped); }

}  // namespace Corvane::Tool
