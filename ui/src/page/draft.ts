// What the user has put into a field and the program has not confirmed yet.
import { useRef, useState } from "preact/hooks";
import type { Control } from "./protocol";

interface Draft<T> {
  value: T;
  sentFor?: Control; // the state that stood when the draft was sent
}

export interface DraftField<T> {
  // The draft while there is one, else what the program says.
  value: T;
  edit(value: T): void;
  // The draft has been sent: it holds until the program tells the control's state anew.
  sent(): void;
  drop(): void;
}

// A draft holds while it is being made, whatever the program says meanwhile, and after it has been sent until the
// program's next word on the control, so that the field does not flicker back to its old value.
export function useDraft<T>(control: Control, confirmed: T): DraftField<T> {
  const [draft, setDraft] = useState<Draft<T> | undefined>(undefined);
  const now = useRef(control);
  now.current = control;
  const holds = draft !== undefined && (draft.sentFor === undefined || draft.sentFor === control);
  return {
    value: holds ? draft.value : confirmed,
    edit: (value) => setDraft({ value }),
    sent: () => setDraft((held) => held && { ...held, sentFor: now.current }),
    drop: () => setDraft(undefined),
  };
}
