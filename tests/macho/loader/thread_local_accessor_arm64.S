// The accessor of thread-local variables: descriptor and address in x0. Its callers rely on every
// other register staying as it was but x16 and x17, unlike those of a C function; the vector
// registers count whole.

    .text
    .globl machoThreadLocalAccessor
    .type machoThreadLocalAccessor, %function
machoThreadLocalAccessor:
    sub sp, sp, #656
    stp x29, x30, [sp]
    mov x29, sp
    stp x1, x2, [sp, #16]
    stp x3, x4, [sp, #32]
    stp x5, x6, [sp, #48]
    stp x7, x8, [sp, #64]
    stp x9, x10, [sp, #80]
    stp x11, x12, [sp, #96]
    stp x13, x14, [sp, #112]
    stp x15, x18, [sp, #128]
    stp q0, q1, [sp, #144]
    stp q2, q3, [sp, #176]
    stp q4, q5, [sp, #208]
    stp q6, q7, [sp, #240]
    stp q8, q9, [sp, #272]
    stp q10, q11, [sp, #304]
    stp q12, q13, [sp, #336]
    stp q14, q15, [sp, #368]
    stp q16, q17, [sp, #400]
    stp q18, q19, [sp, #432]
    stp q20, q21, [sp, #464]
    stp q22, q23, [sp, #496]
    stp q24, q25, [sp, #528]
    stp q26, q27, [sp, #560]
    stp q28, q29, [sp, #592]
    stp q30, q31, [sp, #624]
    bl machoThreadLocalAddress
    ldp q30, q31, [sp, #624]
    ldp q28, q29, [sp, #592]
    ldp q26, q27, [sp, #560]
    ldp q24, q25, [sp, #528]
    ldp q22, q23, [sp, #496]
    ldp q20, q21, [sp, #464]
    ldp q18, q19, [sp, #432]
    ldp q16, q17, [sp, #400]
    ldp q14, q15, [sp, #368]
    ldp q12, q13, [sp, #336]
    ldp q10, q11, [sp, #304]
    ldp q8, q9, [sp, #272]
    ldp q6, q7, [sp, #240]
    ldp q4, q5, [sp, #208]
    ldp q2, q3, [sp, #176]
    ldp q0, q1, [sp, #144]
    ldp x15, x18, [sp, #128]
    ldp x13, x14, [sp, #112]
    ldp x11, x12, [sp, #96]
    ldp x9, x10, [sp, #80]
    ldp x7, x8, [sp, #64]
    ldp x5, x6, [sp, #48]
    ldp x3, x4, [sp, #32]
    ldp x1, x2, [sp, #16]
    ldp x29, x30, [sp]
    add sp, sp, #656
    ret
    .size machoThreadLocalAccessor, . - machoThreadLocalAccessor
    .section .note.GNU-stack, "", %progbits
