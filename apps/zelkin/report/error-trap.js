window.onerror = function () {
  window.zelkinScriptErrors = (window.zelkinScriptErrors || 0) + 1;
  if (document.body)
    document.body.setAttribute('data-script-errors', String(window.zelkinScriptErrors));
  return false;
};
