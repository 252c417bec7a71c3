#include "CPlex.h"

#include <cstddef>
#include <new>

CPlex* CPlex::Create(CPlex*& head, unsigned int count, unsigned int elementSize) {
    void* const memory = operator new (sizeof(CPlex) + std::size_t{count} * elementSize);
    head = new (memory) CPlex{head};
    return head;
}

void CPlex::FreeDataChain() {
    for (CPlex* block = this; block != nullptr;) {
        CPlex* const next = block->pNext;
        operator delete(block);
        block = next;
    }
}
