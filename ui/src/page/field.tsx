// What all controls share: their names in the document, their labels and their tool tips.
import type { JSX } from "preact";
import type { Control, ControlEventName } from "./protocol";

export type Act = (control: Control, event: ControlEventName, input?: { value?: number; text?: string }) => void;

export interface ControlProps {
  panel: string;
  control: Control;
  act: Act;
}

export function marks(control: Control): Record<string, string | number> {
  return control.index === undefined
    ? { "data-control": control.control }
    : { "data-control": control.control, "data-index": control.index };
}

export function elementId({ panel, control }: ControlProps): string {
  return `${panel}-${control.control}${control.index === undefined ? "" : `-${control.index}`}`;
}

export function tip(control: Control): string | undefined {
  return control.toolTip === "" ? undefined : control.toolTip;
}

// A name for a field without a label, for those who hear the page instead of seeing it.
export function nameOf(control: Control): { "aria-label"?: string } {
  return control.caption === "" ? { "aria-label": control.toolTip === "" ? control.control : control.toolTip } : {};
}

export function Field(props: { id: string; label: string; wide?: boolean; children: JSX.Element }) {
  return (
    <div class={props.wide ? "field field-wide" : "field"}>
      {props.label !== "" && (
        <label for={props.id} id={`${props.id}-label`}>
          {props.label}
        </label>
      )}
      {props.children}
    </div>
  );
}
