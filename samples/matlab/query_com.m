% Not yet run. Asks an instrument at a COM port who it is.
%
%   query_com                      query_com(3, '19200', 'MEAS?')
function query_com(number, baud, cmd)
    if nargin < 1, number = 1; end
    if nargin < 2, baud = '9600'; end
    if nargin < 3, cmd = '*IDN?'; end
    csRS232 = 0;

    comm = actxserver('KespCommObj.CKespCommObj');
    % However this function ends.
    release = onCleanup(@() delete(comm));
    comm.CommStyle = csRS232;
    port = comm.CommObject;
    port.Port = number;
    set_baud_rate(port, baud);

    % What is passed by reference comes back behind the result.
    [succeeded, result] = comm.Query('', cmd);
    fprintf('command:     %s\n', cmd);
    if succeeded
        fprintf('reply:       %s\n', result);
    else
        fprintf('source:      %s\n', comm.CommErrorSource);
        fprintf('description: %s\n', comm.CommErrorDescr);
    end
    disp(['status:      ' num2str(comm.CommError)]);
end

% The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
function set_baud_rate(port, baud)
    br150 = 0;
    br921600 = 13;
    port.MaxBaudRate = br921600;
    port.MinBaudRate = br150;
    for rate = br150:br921600
        if strcmp(port.BaudRateName(rate), baud)
            port.BaudRate = rate;
            return
        end
    end
    error('%s is not a bit rate of this library', baud);
end
