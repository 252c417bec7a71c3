// A function for each kind of frame that <mach-o/compact_unwind_encoding.h> knows on Intel: saves
// registers that belong to its caller, spoils them, and calls what it is given.

// void NAME(void (*call)(void*), void* argument)
#define FRAME(name, save, restore)                                                 \
    asm(".text\n.globl _" #name "\n.p2align 4\n_" #name ":\n.cfi_startproc\n" save \
        "movq %rdi, %rax\n movq %rsi, %rdi\n"                                      \
        "callq *%rax\n" restore "ret\n.cfi_endproc\n")

#define SPOIL(register) "movq $-1, %" register "\n"

FRAME(throughFramePointer,
      "pushq %rbp\n.cfi_def_cfa_offset 16\n.cfi_offset %rbp, -16\n"
      "movq %rsp, %rbp\n.cfi_def_cfa_register %rbp\n"
      "pushq %r15\n pushq %r14\n pushq %r13\n pushq %r12\n pushq %rbx\n subq $8, %rsp\n"
      ".cfi_offset %rbx, -56\n.cfi_offset %r12, -48\n.cfi_offset %r13, -40\n"
      ".cfi_offset %r14, -32\n.cfi_offset %r15, -24\n" SPOIL("rbx") SPOIL("r12") SPOIL("r13")
          SPOIL("r14") SPOIL("r15"),
      "addq $8, %rsp\n popq %rbx\n popq %r12\n popq %r13\n popq %r14\n popq %r15\n popq %rbp\n");

FRAME(throughStack,
      "pushq %r15\n.cfi_def_cfa_offset 16\n pushq %r14\n.cfi_def_cfa_offset 24\n"
      "pushq %rbx\n.cfi_def_cfa_offset 32\n subq $16, %rsp\n.cfi_def_cfa_offset 48\n"
      ".cfi_offset %rbx, -32\n.cfi_offset %r14, -24\n.cfi_offset %r15, -16\n" SPOIL("rbx")
          SPOIL("r14") SPOIL("r15"),
      "addq $16, %rsp\n popq %rbx\n popq %r14\n popq %r15\n");

// In another order, as the number of the order is what the record keeps.
FRAME(throughStackWithAllRegisters,
      "pushq %rbx\n.cfi_def_cfa_offset 16\n pushq %r13\n.cfi_def_cfa_offset 24\n"
      "pushq %rbp\n.cfi_def_cfa_offset 32\n pushq %r12\n.cfi_def_cfa_offset 40\n"
      "pushq %r15\n.cfi_def_cfa_offset 48\n pushq %r14\n.cfi_def_cfa_offset 56\n"
      "subq $8, %rsp\n.cfi_def_cfa_offset 64\n"
      ".cfi_offset %r14, -56\n.cfi_offset %r15, -48\n.cfi_offset %r12, -40\n"
      ".cfi_offset %rbp, -32\n.cfi_offset %r13, -24\n.cfi_offset %rbx, -16\n" SPOIL("rbx")
          SPOIL("rbp") SPOIL("r12") SPOIL("r13") SPOIL("r14") SPOIL("r15"),
      "addq $8, %rsp\n popq %r14\n popq %r15\n popq %r12\n popq %rbp\n popq %r13\n popq %rbx\n");

FRAME(throughLargeStack,
      "pushq %r15\n.cfi_def_cfa_offset 16\n pushq %r14\n.cfi_def_cfa_offset 24\n"
      "pushq %rbx\n.cfi_def_cfa_offset 32\n subq $8000, %rsp\n.cfi_def_cfa_offset 8032\n"
      ".cfi_offset %rbx, -32\n.cfi_offset %r14, -24\n.cfi_offset %r15, -16\n" SPOIL("rbx")
          SPOIL("r14") SPOIL("r15"),
      "addq $8000, %rsp\n popq %rbx\n popq %r14\n popq %r15\n");

// No record can say that a frame is found through rbx.
FRAME(throughDwarf,
      "pushq %rbx\n.cfi_adjust_cfa_offset 8\n.cfi_offset %rbx, -16\n"
      "movq %rsp, %rbx\n.cfi_def_cfa %rbx, 16\n andq $-128, %rsp\n subq $256, %rsp\n",
      "movq %rbx, %rsp\n.cfi_def_cfa %rsp, 16\n popq %rbx\n.cfi_adjust_cfa_offset -8\n");
