// The accessor of thread-local variables: descriptor in rdi, address in rax. Its callers rely on
// every other register staying as it was, unlike those of a C function.

    .text
    .globl machoThreadLocalAccessor
    .type machoThreadLocalAccessor, @function
machoThreadLocalAccessor:
    pushq %rbp
    movq %rsp, %rbp
    pushq %rdi
    pushq %rsi
    pushq %rcx
    pushq %rdx
    pushq %r8
    pushq %r9
    pushq %r10
    pushq %r11
    subq $528, %rsp
    andq $-64, %rsp
    fxsave64 (%rsp)
    call machoThreadLocalAddress@PLT
    fxrstor64 (%rsp)
    leaq -64(%rbp), %rsp
    popq %r11
    popq %r10
    popq %r9
    popq %r8
    popq %rdx
    popq %rcx
    popq %rsi
    popq %rdi
    popq %rbp
    ret
    .size machoThreadLocalAccessor, . - machoThreadLocalAccessor
    .section .note.GNU-stack, "", @progbits
