/*
 * What stands at fixed places: the second stage of the boot loader with its checksum, and the vectors.
 * A word is 32 bits on every machine that this is assembled for; the contents don't matter here.
 */
        .section .boot2, "ax", %progbits
        .balign 4
        .skip 252
        .long 0

        .section .vectors, "a", %progbits
        .balign 4
        .skip 4 * 48

        .section .noinit.log, "aw", %nobits
        .balign 4
        .skip 100
