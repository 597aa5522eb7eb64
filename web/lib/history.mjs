// What was done to a form since it was opened, so that it can be undone: a form that is reverted gets all of it again but the last
// step. Values that follow each other are put in together, which takes as long as one fill.

export class History {
    constructor() {
        this.done = [];
        this.undone = [];
    }

    // A step is {values} of names, or {work}, a function that does it again. Values for the field that the last step changed
    // become a part of it.
    add(step) {
        const last = this.done.at(-1);
        this.undone = [];
        if (last?.values && step.values && sameNames(last.values, step.values))
            last.values = step.values;
        else
            this.done.push(step);
    }

    // Takes the last step away; false when there is none.
    back() {
        if (this.done.length === 0)
            return false;
        this.undone.push(this.done.pop());
        return true;
    }

    // Hands back the step that was taken away last; null when there is none.
    forth() {
        const step = this.undone.pop() ?? null;
        if (step)
            this.done.push(step);
        return step;
    }

    // The steps, with values in a row as one of them.
    replay() {
        const steps = [];
        for (const step of this.done) {
            const last = steps.at(-1);
            if (last?.values && step.values)
                Object.assign(last.values, step.values);
            else
                steps.push(step.values ? { values: { ...step.values } } : step);
        }
        return steps;
    }
}

function sameNames(one, other) {
    const names = Object.keys(one);
    return names.length === 1 && names.length === Object.keys(other).length && Object.hasOwn(other, names[0]);
}
