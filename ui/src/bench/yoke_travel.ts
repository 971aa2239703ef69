// Where a yoke stands: raw units of its sensors, 0..1023.

export const HIGHEST_RAW = 1023;
export const CENTRE_RAW = HIGHEST_RAW / 2;
export const FULL_FORCE = 511;

/** Of half the travel, -1..1. */
export function shareOf(raw: number): number {
  return (raw - CENTRE_RAW) / CENTRE_RAW;
}

/** A whole raw position within the sensor's range. */
export function rawOf(share: number): number {
  return Math.min(HIGHEST_RAW, Math.max(0, Math.round(CENTRE_RAW + share * CENTRE_RAW)));
}

/** Where on an axis something stands or is drawn to, as shares of half the travel. `pull` is towards the pilot. */
export interface Place {
  turn: number;
  pull: number;
}
