// A list of lines, of which one may be selected with mouse or keyboard.
import { useEffect, useRef } from "preact/hooks";
import { elementId, Field, marks, nameOf, tip, type ControlProps } from "./field";

const pageStep = 10;

// The line that a key leads to, or nothing for other keys.
function lineAfter(key: string, at: number, count: number): number | undefined {
  const steps: Record<string, number> = {
    ArrowDown: at + 1,
    ArrowUp: at - 1,
    PageDown: at + pageStep,
    PageUp: at - pageStep,
    Home: 0,
    End: count - 1,
  };
  const line = steps[key];
  return line === undefined || count === 0 ? undefined : Math.min(Math.max(line, 0), count - 1);
}

export function ListView(props: ControlProps) {
  const { control, act } = props;
  const id = elementId(props);
  const items = control.items ?? [];
  const list = useRef<HTMLUListElement>(null);

  useEffect(() => {
    list.current?.querySelector('[aria-selected="true"]')?.scrollIntoView({ block: "nearest" });
  }, [control.value]);

  const onKeyDown = (event: KeyboardEvent) => {
    const line = lineAfter(event.key, control.value, items.length);
    if (!control.enabled || event.ctrlKey || event.altKey || event.metaKey) {
      return;
    }
    if (line !== undefined) {
      event.preventDefault();
      if (line !== control.value) {
        act(control, "click", { value: line });
      }
    } else if (event.key === "Enter" && control.value >= 0) {
      act(control, "double_click", { value: control.value });
    }
  };

  return (
    <Field id={id} label={control.caption} wide>
      <ul
        id={id}
        ref={list}
        class="list"
        role="listbox"
        tabIndex={0}
        {...marks(control)}
        {...(control.caption === "" ? nameOf(control) : { "aria-labelledby": `${id}-label` })}
        aria-disabled={!control.enabled}
        aria-activedescendant={control.value < 0 ? undefined : `${id}-${control.value}`}
        title={tip(control)}
        onKeyDown={onKeyDown}
      >
        {items.map((item, index) => (
          <li
            key={index}
            id={`${id}-${index}`}
            role="option"
            aria-selected={index === control.value}
            onClick={() => control.enabled && act(control, "click", { value: index })}
            onDblClick={() => control.enabled && act(control, "double_click", { value: index })}
          >
            {item}
          </li>
        ))}
      </ul>
    </Field>
  );
}
