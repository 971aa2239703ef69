// Controls that only show something.
import { colourClass, colourStyle, isLit } from "./colour";
import { elementId, Field, marks, nameOf, tip, type ControlProps } from "./field";

// A number, alone or with what stands around numbers; it lines up at its right end, so that digits stand still.
const numberLike = /^[-+]?[\d\s.,:/]*\d[\d\s.,:/]*%?$/;

export function TextView({ control }: ControlProps) {
  return (
    <p class={`text${colourClass(control.colour)}`} style={colourStyle(control.colour)} {...marks(control)} title={tip(control)}>
      {control.text}
    </p>
  );
}

// A read-only field, or an indicator: a lamp with its text.
export function Readout(props: ControlProps) {
  const { control } = props;
  const id = elementId(props);
  const classes = ["readout"];
  if (control.kind === "indicator" || isLit(control.colour)) {
    classes.push("lamp");
  } else if (numberLike.test(control.text)) {
    classes.push("readout-number");
  }
  return (
    <Field id={id} label={control.caption}>
      <output
        id={id}
        class={classes.join(" ") + colourClass(control.colour)}
        style={colourStyle(control.colour)}
        {...marks(control)}
        {...nameOf(control)}
        aria-live="off"
        title={tip(control)}
      >
        {control.text}
      </output>
    </Field>
  );
}

export function ProgressView(props: ControlProps) {
  const { control } = props;
  const id = elementId(props);
  return (
    <Field id={id} label={control.caption} wide>
      <progress id={id} {...marks(control)} {...nameOf(control)} title={tip(control)} max={control.maximum} value={control.value} />
    </Field>
  );
}
