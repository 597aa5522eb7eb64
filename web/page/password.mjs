// Asks for the password of a protected file.

const dialog = document.getElementById("password");
const input = document.getElementById("password-text");

// Resolves to the password, or to null when people give up.
export function askPassword(problem) {
    document.getElementById("password-problem").textContent = problem;
    input.value = "";
    dialog.returnValue = "";
    dialog.showModal();
    return new Promise((resolve) => {
        let answer = null;
        const submit = () => { answer = input.value; };
        dialog.querySelector("form").addEventListener("submit", submit, { once: true });
        document.getElementById("password-cancel").onclick = () => dialog.close();
        dialog.addEventListener("close", () => {
            dialog.querySelector("form").removeEventListener("submit", submit);
            resolve(answer);
        }, { once: true });
    });
}
