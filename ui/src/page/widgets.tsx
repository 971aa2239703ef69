// Special drawings that a picture control names; each draws from the control's text and value.
import type { JSX } from "preact";
import type { Act } from "./field";
import { ForceCurve } from "./force_curve";
import type { Control } from "./protocol";

export const widgets: Record<string, (props: { control: Control; act: Act }) => JSX.Element> = {
  force_curve: ForceCurve,
};
