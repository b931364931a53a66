/*
 * A program for the example `place`: takes samples, filters them and sends what comes out. It is
 * compiled for the machine at hand and never run. Code is aligned to 64, and no function is larger,
 * so that the room that it takes doesn't depend on the machine or its compiler.
 */
#include "program.h"

#define TAPS 16

_Alignas(4) const uint16_t weights[TAPS] = {1,   2,  4,  8,  16, 32, 64, 128,
                                            128, 64, 32, 16, 8,  4,  2,  1};
static _Alignas(4) volatile uint16_t history[TAPS];
static _Alignas(4) volatile uint32_t taken[1];
_Alignas(4) uint32_t settings[4] = {115200, 48000, TAPS, 1};
_Alignas(8) uint8_t frame[600];

/* Each sample comes by interrupt, so this isn't to wait for the flash. */
IN_RAM void take_sample(uint16_t sample)
{
  history[taken[0]++ % TAPS] = sample;
}

CODE uint32_t filtered(void)
{
  uint32_t sum = 0;
  for (uint32_t i = 0; i < TAPS; ++i) sum += (uint32_t)history[i] * weights[i];
  return sum;
}

CODE void Reset_Handler(void)
{
  for (;;) {
    frame[0] = (uint8_t)(filtered() >> 16);
    send(frame, sizeof frame);
  }
}
