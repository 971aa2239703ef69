// Units of the radio stack: a face plate with windows, lamps and controls in rows.

import type { ComponentChildren, JSX } from "preact";

interface UnitProps {
  label: string;
  title: string;
  children: ComponentChildren;
}

export function Unit({ label, title, children }: UnitProps): JSX.Element {
  return (
    <section class="unit" aria-label={label}>
      <span class="unit-screw" aria-hidden="true" />
      <div class="unit-body">{children}</div>
      <span class="unit-screw" aria-hidden="true" />
      <span class="unit-title">{title}</span>
    </section>
  );
}

export function Row({ children }: { children: ComponentChildren }): JSX.Element {
  return <div class="unit-row">{children}</div>;
}

interface ScreenProps {
  name: string;
  caption: string;
  text: string;
  /** All segments of its places, shown faintly behind the digits. */
  ghost: string;
  size?: "normal" | "big";
}

/** A display: digits as they look, dark without power. */
export function Screen({ name, caption, text, ghost, size = "normal" }: ScreenProps): JSX.Element {
  return (
    <span class={`screen screen-${size}`}>
      <span class="screen-caption">{caption}</span>
      <span class="screen-window">
        <span class="screen-ghost" aria-hidden="true">
          {ghost}
        </span>
        <span class="screen-text" data-display={name} role="status" aria-live="off" aria-label={`${caption} display`}>
          {text}
        </span>
      </span>
    </span>
  );
}

interface LampProps {
  name: string;
  caption: string;
  lit: boolean;
  colour?: "green" | "amber" | "white" | "blue" | "red";
}

export function UnitLamp({ name, caption, lit, colour = "green" }: LampProps): JSX.Element {
  return (
    <span class={`unit-lamp unit-lamp-${colour}`} data-lamp={name} data-on={lit} role="img" aria-label={`${caption} ${lit ? "lit" : "dark"}`}>
      {caption}
    </span>
  );
}
