// One component for each kind of control. The element that bears data-control is the one a user reads or works.
import { Component } from "preact";
import { useEffect, useRef, useState } from "preact/hooks";
import type { JSX } from "preact";
import { cssColour, lampOf } from "./colour";
import type { Control, ControlEventName } from "./protocol";
import { widgets } from "./widgets";

export type Act = (control: Control, event: ControlEventName, input?: { value?: number; text?: string }) => void;

interface ControlProps {
  panel: string;
  control: Control;
  act: Act;
}

function marks(control: Control): Record<string, string | number> {
  return control.index === undefined
    ? { "data-control": control.control }
    : { "data-control": control.control, "data-index": control.index };
}

function elementId({ panel, control }: ControlProps): string {
  return `${panel}-${control.control}${control.index === undefined ? "" : `-${control.index}`}`;
}

function tip(control: Control): string | undefined {
  return control.toolTip === "" ? undefined : control.toolTip;
}

function Field({ id, label, children, wide }: { id: string; label: string; wide?: boolean; children: JSX.Element }) {
  return (
    <div class={wide ? "field field-wide" : "field"}>
      {label !== "" && (
        <label for={id} id={`${id}-label`}>
          {label}
        </label>
      )}
      {children}
    </div>
  );
}

function LabelView({ control }: ControlProps) {
  return (
    <p class="text" {...marks(control)} title={tip(control)}>
      {control.text}
    </p>
  );
}

function lampClass(base: string, control: Control): string {
  const lamp = lampOf(control.colour);
  return lamp === "none" ? base : `${base} lamp lamp-${lamp}`;
}

function lampStyle(control: Control): JSX.CSSProperties | undefined {
  return lampOf(control.colour) === "other" ? { backgroundColor: cssColour(control.colour) } : undefined;
}

function Readout(props: ControlProps) {
  const { control } = props;
  const id = elementId(props);
  return (
    <Field id={id} label={control.caption}>
      <output id={id} class={lampClass("readout", control)} style={lampStyle(control)} {...marks(control)} title={tip(control)}>
        {control.text === "" ? "\u00a0" : control.text}
      </output>
    </Field>
  );
}

// What is being typed stays until it is committed with Enter or by leaving the field.
function EditBox(props: ControlProps) {
  const { control, act } = props;
  const id = elementId(props);
  const [draft, setDraft] = useState<string | undefined>(undefined);
  const commit = () => {
    if (draft !== undefined && draft !== control.text) {
      act(control, "change", { text: draft });
    }
    setDraft(undefined);
  };
  return (
    <Field id={id} label={control.caption}>
      <input
        id={id}
        type="text"
        {...marks(control)}
        title={tip(control)}
        disabled={!control.enabled}
        value={draft ?? control.text}
        onInput={(event) => setDraft(event.currentTarget.value)}
        onBlur={commit}
        onKeyDown={(event) => {
          if (event.key === "Enter") {
            commit();
          } else if (event.key === "Escape") {
            setDraft(undefined);
          }
        }}
      />
    </Field>
  );
}

function TextBoxView(props: ControlProps) {
  return props.control.editable ? <EditBox {...props} /> : <Readout {...props} />;
}

function CheckView(props: ControlProps) {
  const { control, act } = props;
  const isOption = control.kind === "option_button";
  return (
    <label class="choice" title={tip(control)}>
      <input
        type={isOption ? "radio" : "checkbox"}
        name={isOption ? `${props.panel}-${control.group}` : undefined}
        {...marks(control)}
        checked={control.value === 1}
        disabled={!control.enabled}
        onChange={(event) => act(control, "click", { value: event.currentTarget.checked ? 1 : 0 })}
      />
      <span>{control.caption}</span>
    </label>
  );
}

function ComboView(props: ControlProps) {
  const { control, act } = props;
  const id = elementId(props);
  return (
    <Field id={id} label={control.caption}>
      <select
        id={id}
        {...marks(control)}
        title={tip(control)}
        disabled={!control.enabled}
        value={String(control.value)}
        onChange={(event) => act(control, "change", { value: Number(event.currentTarget.value) })}
      >
        {control.value < 0 && <option value="-1" />}
        {(control.items ?? []).map((item, index) => (
          <option key={index} value={String(index)}>
            {item}
          </option>
        ))}
      </select>
    </Field>
  );
}

function ListView(props: ControlProps) {
  const { control, act } = props;
  const id = elementId(props);
  const items = control.items ?? [];
  const list = useRef<HTMLUListElement>(null);
  useEffect(() => {
    list.current?.querySelector('[aria-selected="true"]')?.scrollIntoView({ block: "nearest" });
  }, [control.value]);
  const choose = (index: number) => {
    if (control.enabled && index >= 0 && index < items.length) {
      act(control, "click", { value: index });
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
        aria-labelledby={`${id}-label`}
        aria-disabled={!control.enabled}
        {...marks(control)}
        title={tip(control)}
        onKeyDown={(event) => {
          const step = event.key === "ArrowDown" ? 1 : event.key === "ArrowUp" ? -1 : 0;
          if (step !== 0) {
            event.preventDefault();
            choose(control.value < 0 ? 0 : control.value + step);
          } else if (event.key === "Enter" && control.value >= 0) {
            act(control, "double_click", { value: control.value });
          }
        }}
      >
        {items.map((item, index) => (
          <li
            key={index}
            role="option"
            aria-selected={index === control.value}
            onClick={() => choose(index)}
            onDblClick={() => control.enabled && act(control, "double_click", { value: index })}
          >
            {item === "" ? "\u00a0" : item}
          </li>
        ))}
      </ul>
    </Field>
  );
}

// While the user drags, the slider stands where the user has it, whatever the program says meanwhile.
function SliderView(props: ControlProps) {
  const { control, act } = props;
  const id = elementId(props);
  const [dragged, setDragged] = useState<number | undefined>(undefined);
  const value = dragged ?? control.value;
  return (
    <Field id={id} label={control.caption}>
      <div class="slider">
        <input
          id={id}
          type="range"
          {...marks(control)}
          title={tip(control)}
          disabled={!control.enabled}
          min={control.minimum}
          max={control.maximum}
          value={value}
          onInput={(event) => {
            const next = Number(event.currentTarget.value);
            setDragged(next);
            act(control, "change", { value: next });
          }}
          onChange={() => setDragged(undefined)}
          onBlur={() => setDragged(undefined)}
        />
        <output class="slider-value">{value}</output>
      </div>
    </Field>
  );
}

function ProgressView(props: ControlProps) {
  const { control } = props;
  const id = elementId(props);
  return (
    <Field id={id} label={control.caption} wide>
      <progress id={id} {...marks(control)} title={tip(control)} max={control.maximum} value={control.value} />
    </Field>
  );
}

function ButtonView({ control, act }: ControlProps) {
  return (
    <button
      type="button"
      class={lampClass("command", control)}
      style={lampStyle(control)}
      {...marks(control)}
      title={tip(control)}
      disabled={!control.enabled}
      onClick={() => act(control, "click")}
    >
      {control.caption}
    </button>
  );
}

function PictureView(props: ControlProps) {
  const Widget = widgets[props.control.widget ?? ""];
  return (
    <div class="picture" {...marks(props.control)} title={tip(props.control)}>
      {Widget && <Widget control={props.control} act={props.act} />}
    </div>
  );
}

const views: Record<Control["kind"], (props: ControlProps) => JSX.Element> = {
  label: LabelView,
  text_box: TextBoxView,
  check_box: CheckView,
  option_button: CheckView,
  combo_box: ComboView,
  list_box: ListView,
  slider: SliderView,
  progress_bar: ProgressView,
  command_button: ButtonView,
  indicator: Readout,
  picture: PictureView,
};

// Drawn again only when its own control has changed: a run panel changes a dozen fields twenty times a second.
export class ControlView extends Component<ControlProps> {
  shouldComponentUpdate(next: ControlProps) {
    return next.control !== this.props.control;
  }

  render() {
    const View = views[this.props.control.kind];
    return this.props.control.visible ? <View {...this.props} /> : null;
  }
}
